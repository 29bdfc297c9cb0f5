// What the window does with saved queries, the history, and the work that no file has.
#include <QAction>
#include <QActionGroup>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLocale>
#include <QMenu>
#include <QMessageBox>
#include <QPointer>
#include <QTimer>
#include <QUndoStack>
#include <utility>

#include "apps/joinery-desk/builder_text.h"
#include "apps/joinery-desk/diagram_actions.h"
#include "apps/joinery-desk/main_window.h"
#include "apps/joinery-desk/message_bar.h"
#include "apps/joinery-desk/result_grid.h"
#include "apps/joinery-desk/sql_tab.h"
#include "apps/joinery-desk/window_actions.h"
#include "apps/joinery-desk/workspace.h"
#include "frame/query_builder_widget.h"
#include "frame/query_history.h"
#include "hostkit/driver_description.h"
#include "hostkit/threads.h"
#include "tools/empty_lists.h"

namespace QB::Desk {
namespace {

constexpr int retryMs = 20;  // until a text is applied that was on its way before

const char* const relationModeKey = "RelationMode";

QString shownPath(const QString& path) {
    return QDir::toNativeSeparators(path);
}

/// "&Undo %1" with the name of the step, or without one.
QString stepText(const QString& plain, const QString& named, QString step) {
    if (step.isEmpty()) return plain;
    return named.arg(step.replace(QLatin1Char('&'), QLatin1String("&&")));
}

}  // namespace

void MainWindow::setUpQueries() {
    connect(&m_queryChecker, &SqlChecker::checked, this, &MainWindow::takeQueryCheck);
    connect(&m_savedChecker, &SqlChecker::checked, this, [this](const SqlCheckResult& result) {
        if (result.isAccepted()) return;
        m_messageBar->show(
            MessageBar::Kind::Note,
            tr("The query is saved as it is, though it is incomplete. As long as it is, opening "
               "the file brings its text into the SQL tab only."));
    });
    connect(m_sqlTab->applier(), &QueryApplier::ended, this,
            [this](bool isApplied, const QString& error) {
                if (m_opening && m_opening->isLoading) finishQuery(isApplied, error);
                noteQueryInSqlFile();
            });
    connect(this, &MainWindow::openFailed, this, [this](const QString& message) {
        if (m_opening) failQuery(message);
    });
    connect(m_builder->history(), &QBQueryHistory::changed, this, &MainWindow::noteWork);
    connect(m_builder->undoStack(), &QUndoStack::cleanChanged, this, &MainWindow::noteWork);
    connect(m_sqlTab, &SqlTab::changed, this, &MainWindow::noteWork);
    connect(&m_journal, &Journal::due, this, &MainWindow::writeJournal);
    connect(&m_journal, &Journal::failed, this, [this](const QString& message) {
        if (m_messageBar->isAsking()) return showNote(message);
        m_messageBar->show(MessageBar::Kind::Note, message);
    });
    connect(m_wholeText, &BuilderText::ready, this, [this] {
        if (!isWorkUnsaved()) return;
        m_journal.write(queryDocument(QString::fromStdString(m_wholeText->text()), true));
    });
}

void MainWindow::connectQueryActions() {
    const auto on = [this](const QAction* action, auto what) {
        connect(action, &QAction::triggered, this, what);
    };
    on(m_actions->openQuery, &MainWindow::chooseQueryFile);
    on(m_actions->saveQuery, &MainWindow::saveQuery);
    on(m_actions->saveQueryAs, &MainWindow::saveQueryAs);
    connect(m_actions, &WindowActions::recentQueryTriggered, this,
            [this](const QString& file) { openQueryFile(file); });

    QUndoStack* stack = m_builder->undoStack();
    connect(m_actions->undo, &QAction::triggered, stack, &QUndoStack::undo);
    connect(m_actions->redo, &QAction::triggered, stack, &QUndoStack::redo);
    connect(stack, &QUndoStack::indexChanged, this, &MainWindow::updateHistoryActions);

    m_actions->diagram->setCommands(m_builder->canvasCommands());
    connect(m_actions->diagram, &DiagramActions::pictureFailed, this, &MainWindow::showError);
    connect(m_actions->diagram, &DiagramActions::pictureSaved, this, [this](const QString& file) {
        showNote(tr("The picture is saved in \"%1\".").arg(shownPath(file)));
    });
    connect(m_actions->view, &QMenu::aboutToShow, this, [this] {
        const auto preferences = m_builder->obtainGlobalPreferences();
        checkChoice(m_actions->relations,
                    preferences.value(QLatin1String(relationModeKey)).toString());
    });
    connect(m_actions->relations, &QActionGroup::triggered, this, [this](const QAction* action) {
        m_builder->loadGlobalPreferences({{QLatin1String(relationModeKey), action->data()}});
    });
}

void MainWindow::updateHistoryActions() {
    const QUndoStack* stack = m_builder->undoStack();
    m_actions->undo->setText(stepText(tr("&Undo"), tr("&Undo %1"), stack->undoText()));
    m_actions->redo->setText(stepText(tr("&Redo"), tr("&Redo %1"), stack->redoText()));
    m_actions->undo->setEnabled(stack->canUndo());
    m_actions->redo->setEnabled(stack->canRedo());
}

// ---- What lies in no file

/// What is unsaved with the SQL text, and has no file of its own, is asked about with that text.
bool MainWindow::isBuilderUnsaved() const {
    if (m_builder->undoStack()->isClean()) return false;
    const bool isTextUnsaved = m_sqlTab->holdsQuery() && m_sqlTab->hasUnsavedText();
    return !m_queryFile.isEmpty() || !isTextUnsaved;
}

/// A query that has no file of its own, and is that of the SQL file, lies there. Not what happens
/// to its diagram from now on.
void MainWindow::noteQueryInSqlFile() {
    const bool isSaved = !m_sqlTab->filePath().isEmpty() && !m_sqlTab->hasUnsavedText();
    if (m_queryFile.isEmpty() && isSaved && m_sqlTab->holdsQuery())
        m_builder->undoStack()->setClean();
}

bool MainWindow::isWorkUnsaved() const {
    return isBuilderUnsaved() || m_sqlTab->hasUnsavedText();
}

void MainWindow::noteWork() {
    const bool isUnsaved = isWorkUnsaved();
    setWindowModified(isUnsaved);
    isUnsaved ? m_journal.noteEdit() : m_journal.clear();
}

void MainWindow::writeJournal() {
    if (!isWorkUnsaved()) return m_journal.clear();
    if (!m_workspace) return m_journal.write(queryDocument(QString(), true));
    // A query that is being replaced is written down when it is there.
    if (m_sqlTab->applier()->isBusy()) return m_journal.noteEdit();
    m_wholeText->request();
}

void MainWindow::offerLeftJournals() {
    while (std::optional<LeftJournal> left = m_journal.takeLeft()) {
        if (left->error.isEmpty()) {
            m_left = std::move(left);
            return askAboutLeftJournal();
        }
        showError(tr("Work that was not saved before a crash is damaged, and lies in \"%1\" now. "
                     "%2")
                      .arg(shownPath(left->movedTo), left->error));
    }
}

void MainWindow::askAboutLeftJournal() {
    const QueryDocument& document = m_left->document;
    const QString& file = document.file.isEmpty() ? document.database : document.file;
    const auto discard = [this] {
        Journal::remove(*std::exchange(m_left, std::nullopt));
        offerLeftJournals();
    };
    const auto restore = [this] {
        takeQuery({m_left->document, m_left->path, true, QueryDatabase::Named, false}, QString());
    };
    m_recoveryBar->ask(tr("Joinery ended before a query was saved (%1, %2).")
                           .arg(QFileInfo(file).fileName(),
                                QLocale().toString(m_left->written, QLocale::ShortFormat)),
                       {tr("&Restore"), restore}, {tr("&Discard"), discard});
}

// ---- Opening

void MainWindow::chooseQueryFile() {
    const QString folder = QFileInfo(m_recentQueries.files().value(0)).absolutePath();
    const QString file = QFileDialog::getOpenFileName(this, tr("Open Query"), folder,
                                                      tr("Queries (*.joinery);;All files (*)"));
    if (!file.isEmpty()) openQueryFile(file);
}

void MainWindow::openQueryFile(const QString& file, QueryDatabase database) {
    const int number = ++m_readNumber;
    HostKit::postToWorker(
        [window = QPointer(this), number, database, path = QFileInfo(file).absoluteFilePath()] {
            QueryDocument document;
            const QString error = readQueryFile(path, document);
            HostKit::postToMainThread([=] {
                if (window && window->m_readNumber == number)
                    window->takeQuery({document, path, false, database, false}, error);
            });
        });
}

void MainWindow::takeQuery(Opening opening, const QString& error) {
    m_opening = std::move(opening);
    if (!error.isEmpty()) {
        if (!QFileInfo::exists(m_opening->path)) m_recentQueries.remove(m_opening->path);
        updateRecentFiles();
        return failQuery(error);
    }
    const QueryDocument& document = m_opening->document;
    if (document.family != DatabaseTypeSQLite)
        return failQuery(
            tr("\"%1\" is a query for %2. Only databases of SQLite can be opened here.")
                .arg(shownPath(m_opening->path), HostKit::familyName(document.family)));
    if (document.sql.isEmpty()) return openQueryDatabase();
    m_queryChecker.start(
        {document.sql.toStdString(), document.family, document.schema.toStdString()});
}

void MainWindow::takeQueryCheck(const SqlCheckResult& result) {
    if (!m_opening) return;
    if (result.isAccepted()) return openQueryDatabase();
    showRefusedQuery(QString::fromStdString(result.outcome.message));
}

void MainWindow::openQueryDatabase() {
    const QString named = m_opening->document.database;
    const bool isThere = QFileInfo(named).isFile();
    const bool isPresentMeant =
        m_opening->database == QueryDatabase::Present || !isThere || named == databaseFile();
    if (!m_workspace || !isPresentMeant) return isThere ? openFile(named) : openLast();
    if (!confirmLosingWork()) return dropOpening();
    // An empty statement is made, not parsed.
    if (m_opening->document.sql.isEmpty()) adopt(m_workspace->database());
    m_grid->setDatabase(m_workspace->database());
    loadQuery();
}

void MainWindow::loadQuery() {
    const QueryDocument& document = m_opening->document;
    m_messageBar->hide();
    QBEngine_LINUX* engine = m_workspace->engine();
    const std::string schema = isSchemaThere(document.schema)
                                   ? document.schema.toStdString()
                                   : m_workspace->defaultSchema().toStdString();
    if (engine->currentSchema() != schema) engine->setCurrentSchema(schema);
    document.text ? m_sqlTab->openText(*document.text, !m_opening->isJournal)
                  : m_sqlTab->startAnew();
    if (document.sql.isEmpty()) return finishQuery(true, QString());
    engine->resetUi();
    applyQuery();
}

void MainWindow::applyQuery() {
    if (!m_opening) return;
    if (m_sqlTab->applier()->isBusy())
        return QTimer::singleShot(retryMs, this, [this] { applyQuery(); });
    m_opening->isLoading = true;
    m_sqlTab->applier()->apply(m_opening->document.sql.toStdString());
}

void MainWindow::finishQuery(bool isApplied, const QString& error) {
    if (!isApplied) return failQuery(error);
    const Opening opening = *std::exchange(m_opening, std::nullopt);
    Tools::SQL::emptySelectLists(m_workspace->engine(), opening.document.listSizes, this);
    m_builder->loadGlobalPreferences(opening.document.preferences);
    m_builder->loadDiagramLayoutJsonString(opening.document.layouts);
    m_builder->history()->clear();
    setQueryFile(opening.isJournal ? opening.document.file : opening.path);
    if (opening.isJournal) {
        m_queryFileTime = opening.document.fileTime;
        m_builder->undoStack()->resetClean();
        continueLeftJournal();
    } else {
        m_recentQueries.add(opening.path);
        updateRecentFiles();
    }
    tellWhatIsNotThere(opening);
    Q_EMIT queryOpened(opening.path);
}

/// The file of the other process is this window's now, so nothing is lost at any moment.
void MainWindow::continueLeftJournal() {
    m_journal.continueWith(*std::exchange(m_left, std::nullopt));
    noteWork();
    offerLeftJournals();
}

/// Nothing of it can be put into the builder, so that stays as it is; but the text is not lost.
void MainWindow::showRefusedQuery(const QString& reason) {
    if (!confirmDiscardText()) return dropOpening();
    const Opening opening = *std::exchange(m_opening, std::nullopt);
    QString text = opening.document.sql;
    const std::optional<QString>& own = opening.document.text;
    if (own && *own != text) text += QLatin1String(";\n\n") + *own;
    m_sqlTab->openText(text, !opening.isJournal);
    editText();
    if (opening.isJournal) continueLeftJournal();
    if (!m_workspace) openLast();
    const QString message =
        tr("\"%1\": %2\nIts text is in the SQL tab; the query in the builder is as it was.")
            .arg(shownPath(opening.path), QString(reason).replace("\n\n", " "));
    showError(message);
    Q_EMIT queryFailed(message);
}

void MainWindow::failQuery(const QString& message) {
    dropOpening();
    if (!message.isEmpty()) showError(message);
    Q_EMIT queryFailed(message);
}

void MainWindow::dropOpening() {
    const bool isJournal = m_opening->isJournal;
    m_opening.reset();
    if (isJournal && m_left) askAboutLeftJournal();
}

/// A file of SQLite has one schema as long as nobody attaches others.
bool MainWindow::isSchemaThere(const QString& schema) const {
    return schema.compare(m_workspace->defaultSchema(), Qt::CaseInsensitive) == 0;
}

void MainWindow::tellWhatIsNotThere(const Opening& opening) {
    const QString& named = opening.document.database;
    const QString& schema = opening.document.schema;
    QStringList told;
    if (opening.database == QueryDatabase::Named && !named.isEmpty() && named != databaseFile())
        told += tr("The database \"%1\" of this query is not there. The query is opened on "
                   "\"%2\".")
                    .arg(shownPath(named), shownPath(databaseFile()));
    if (!isSchemaThere(schema))
        told += tr("The schema \"%1\" of this query is not there. Names are looked for in \"%2\".")
                    .arg(schema, m_workspace->defaultSchema());
    if (!told.isEmpty()) m_messageBar->show(MessageBar::Kind::Note, told.join(QLatin1Char('\n')));
}

// ---- Saving

void MainWindow::setQueryFile(const QString& file) {
    m_queryFile = file;
    m_queryFileTime = QFileInfo(file).lastModified();
    updateTitle();
}

/// What is typed in the SQL tab belongs to the query, unless it lies in an SQL file.
QueryDocument MainWindow::queryDocument(const QString& builtText, bool isJournal) const {
    QueryDocument document;
    document.sql = builtText;
    const bool isTextOwn =
        m_sqlTab->filePath().isEmpty() || (isJournal && m_sqlTab->hasUnsavedText());
    if (isTextOwn) document.text = m_sqlTab->ownText();
    document.family = DatabaseTypeSQLite;
    document.layouts = m_builder->obtainDiagramLayoutJsonString();
    document.preferences = m_builder->obtainGlobalPreferences();
    if (isJournal) {
        document.file = m_queryFile;
        document.fileTime = m_queryFileTime;
    }
    if (!m_workspace) return document;
    const QBEngine_LINUX* engine = m_workspace->engine();
    document.listSizes = Tools::SQL::selectListSizes(engine);
    document.family = engine->databaseType();
    document.schema = QString::fromStdString(engine->currentSchema());
    document.database = databaseFile();
    const bool isRootShown = engine->currentTopLevelQueryComponentLayer() == 0;
    if (document.text && isRootShown && m_sqlTab->holdsQuery()) document.sql = *document.text;
    return document;
}

bool MainWindow::saveQuery() {
    if (m_queryFile.isEmpty()) return saveQueryAs();
    const QFileInfo info(m_queryFile);
    const bool isForeign = info.exists() && info.lastModified() != m_queryFileTime;
    return (!isForeign || confirmOverwriting(m_queryFile)) && saveQueryTo(m_queryFile);
}

bool MainWindow::saveQueryAs() {
    QFileDialog dialog(this, tr("Save Query"), m_queryFile,
                       tr("Queries (*.joinery);;All files (*)"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(QStringLiteral("joinery"));
    return dialog.exec() == QDialog::Accepted && saveQueryTo(dialog.selectedFiles().value(0));
}

bool MainWindow::saveQueryTo(const QString& file) {
    if (!m_workspace) return false;
    const std::string built =
        m_wholeText->isStatementEmpty() ? std::string() : m_workspace->engine()->buildQuery();
    const QueryDocument document = queryDocument(QString::fromStdString(built), false);
    const QString error = writeQueryFile(file, document);
    if (!error.isEmpty()) {
        showError(error);
        return false;
    }
    m_messageBar->hide();  // it may tell why this went wrong before
    setQueryFile(file);
    if (m_sqlTab->filePath().isEmpty()) m_sqlTab->markSaved();
    m_builder->undoStack()->setClean();
    m_recentQueries.add(file);
    updateRecentFiles();
    noteWork();
    showNote(tr("The query is saved in \"%1\".").arg(shownPath(file)));
    if (!document.sql.isEmpty())
        m_savedChecker.start(
            {document.sql.toStdString(), document.family, document.schema.toStdString()});
    return true;
}

// ---- Questions

bool MainWindow::confirmLosingWork() {
    const bool isInSqlFile = !m_sqlTab->filePath().isEmpty();
    if (isInSqlFile && !confirmDiscardText()) return false;
    return confirmLosingQuery(!isInSqlFile);
}

bool MainWindow::confirmLosingQuery(bool isTextAtStake) {
    const bool isTextUnsaved = isTextAtStake && m_sqlTab->hasUnsavedText();
    if (!isBuilderUnsaved() && !isTextUnsaved) return true;
    const auto answer = QMessageBox::warning(
        this, tr("Save the query?"), tr("The query has been changed and is not saved."),
        QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
    if (answer == QMessageBox::Save) return saveQuery();
    return answer == QMessageBox::Discard;
}

}  // namespace QB::Desk
