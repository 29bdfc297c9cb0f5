#include "apps/joinery-desk/main_window.h"

#include <QActionGroup>
#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QPointer>
#include <QPushButton>
#include <QSettings>
#include <QSplitter>
#include <QStatusBar>
#include <QTimer>
#include <QTreeWidget>
#include <QUrl>
#include <QVBoxLayout>
#include <utility>

#include "apps/joinery-desk/builder_text.h"
#include "apps/joinery-desk/language.h"
#include "apps/joinery-desk/message_bar.h"
#include "apps/joinery-desk/result_grid.h"
#include "apps/joinery-desk/sample_database.h"
#include "apps/joinery-desk/sql_file.h"
#include "apps/joinery-desk/sql_tab.h"
#include "apps/joinery-desk/undo_keys.h"
#include "apps/joinery-desk/window_actions.h"
#include "apps/joinery-desk/workspace.h"
#include "canvas/view/canvas_commands.h"
#include "diagrampanel/diagram_object_tree_panel_widget.h"
#include "frame/highlighting_query_preview_panel_widget.h"
#include "frame/query_builder_widget.h"
#include "frame/query_history.h"
#include "hostkit/threads.h"

namespace QB::Desk {
namespace {

constexpr int noteMs = 6000;  // how long the status bar tells of something done

const char* const themeKey = "view/theme";
const char* const languageKey = "view/language";
const char* const rowLimitKey = "result/rowLimit";

/// Shares of the panes in a window that nobody has arranged yet.
QList<int> firstSizes(const QSplitter* splitter) {
    if (splitter->orientation() == Qt::Horizontal) return {240, 600, 360};
    if (splitter->objectName() == QLatin1String("windowSplitter")) return {620, 150};
    return {360, 190};  // diagram and clauses
}

/// The one local file of a drag; empty if it brings something else.
QString draggedFile(const QMimeData* data) {
    const QList<QUrl> urls = data->urls();
    return urls.size() == 1 ? urls.first().toLocalFile() : QString();
}

QString journalFolder(const QString& sampleFile) {
    return sampleFile.isEmpty() ? QString()
                                : QFileInfo(sampleFile).dir().filePath(QStringLiteral("journals"));
}

}  // namespace

MainWindow::MainWindow(QSettings* settings, const QString& sampleFile, const QueryParsing& parsing,
                       QWidget* parent)
    : QMainWindow(parent)
    , m_settings(settings)
    , m_sampleFile(sampleFile)
    , m_recentFiles(settings, QStringLiteral("recentFiles"))
    , m_recentQueries(settings, QStringLiteral("recentQueries"))
    , m_recentTexts(settings, QStringLiteral("recentTexts"))
    , m_states(settings)
    , m_actions(new WindowActions(this))
    , m_builder(new QBQueryBuilderWidget)
    , m_sqlTab(new SqlTab(parsing))
    , m_grid(new ResultGrid)
    , m_messageBar(new MessageBar)
    , m_recoveryBar(new MessageBar)
    , m_splitter(new QSplitter(Qt::Vertical))
    , m_wholeText(new BuilderText(BuilderText::Extent::WholeQuery, m_sqlTab))
    , m_queryChecker(parsing.check)
    , m_savedChecker(parsing.check)
    , m_journal(journalFolder(sampleFile)) {
    setAcceptDrops(true);
    setUpContent();
    setUpBuilder();
    setUpSqlTab();
    setUpQueries();
    new UndoKeys(this);
    connectActions();
    connectTextActions();
    connectQueryActions();
    connect(m_grid, &ResultGrid::runningChanged, this, &MainWindow::updateActions);
    HostKit::setErrorHandler([this](const std::string& text) {
        m_messageBar->showOfQuery(QString::fromStdString(text));
    });
    restoreSettings();
    updateRecentFiles();
    retranslate();
    updateActions();
}

MainWindow::~MainWindow() {
    HostKit::setErrorHandler(nullptr);
    m_builder->history()->disconnect(this);
    delete m_builder;
}

void MainWindow::setUpContent() {
    m_splitter->setObjectName(QStringLiteral("windowSplitter"));
    m_splitter->setChildrenCollapsible(false);
    m_splitter->addWidget(m_builder);
    m_splitter->addWidget(m_grid);
    m_splitter->setStretchFactor(0, 3);
    m_splitter->setStretchFactor(1, 2);
    auto* content = new QWidget;
    auto* layout = new QVBoxLayout(content);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    m_recoveryBar->setObjectName(QStringLiteral("recoveryBar"));
    layout->addWidget(m_recoveryBar);
    layout->addWidget(m_messageBar);
    layout->addWidget(m_splitter, 1);
    setCentralWidget(content);
    setStatusBar(m_grid->footLine());
}

void MainWindow::setUpBuilder() {
    m_builder->setQueryPreviewPanel(new QBHighlightingQueryPreviewPanelWidget);
    // The builder is no dialog here: there is nothing that this button could close.
    if (const auto* box = m_builder->findChild<QDialogButtonBox*>()) {
        hideCancelButton();
        // A style's pictures for "Yes" and "OK" say nothing about building and running.
        for (const auto which : {QDialogButtonBox::Yes, QDialogButtonBox::Ok})
            box->button(which)->setIcon(QIcon());
    }
    connect(m_builder, &QBQueryBuilderWidget::okDialogButtonClicked, this,
            [this](const QString&, bool run) { takeQuery(run); });
    connect(objectTree(), &QBDiagramObjectTreePanelWidget::signalTreeSettled, this,
            &MainWindow::showDefaultSchema);
}

void MainWindow::hideCancelButton() {
    if (const auto* box = m_builder->findChild<QDialogButtonBox*>())
        box->button(QDialogButtonBox::Cancel)->hide();
}

void MainWindow::connectActions() {
    const auto on = [this](const QAction* action, void (MainWindow::*what)()) {
        connect(action, &QAction::triggered, this, what);
    };
    on(m_actions->open, &MainWindow::chooseFile);
    on(m_actions->openSample, &MainWindow::openSample);
    on(m_actions->newQuery, &MainWindow::startQuery);
    on(m_actions->run, &MainWindow::runQuery);
    on(m_actions->copyText, &MainWindow::copyQuery);
    on(m_actions->about, &MainWindow::showAbout);
    connect(m_actions->quit, &QAction::triggered, this, &QWidget::close);
    connect(m_actions->stop, &QAction::triggered, m_grid, &ResultGrid::cancel);
    connect(m_actions->reload, &QAction::triggered, this,
            [this] { m_workspace->session()->reloadCandidates(); });
    connect(m_actions, &WindowActions::recentFileTriggered, this, &MainWindow::openFile);
    connect(m_actions, &WindowActions::recentTextTriggered, this, &MainWindow::openTextFile);
    connect(m_actions->clearRecent, &QAction::triggered, this, [this] {
        m_recentFiles.clear();
        m_recentQueries.clear();
        m_recentTexts.clear();
        updateRecentFiles();
    });
    connect(m_actions->themes, &QActionGroup::triggered, this, [this](const QAction* action) {
        m_settings->setValue(QLatin1String(themeKey), action->data());
        setTheme(themeOfName(action->data().toString()));
    });
    connect(m_actions->languages, &QActionGroup::triggered, this, [this](const QAction* action) {
        m_settings->setValue(QLatin1String(languageKey), action->data());
        setLanguage(action->data().toString());
    });
}

QBDiagramObjectTreePanelWidget* MainWindow::objectTree() const {
    return m_builder->findChild<QBDiagramObjectTreePanelWidget*>();
}

// ---- Opening

void MainWindow::chooseFile() {
    const QString folder = QFileInfo(m_recentFiles.files().value(0)).absolutePath();
    const QString file = QFileDialog::getOpenFileName(
        this, tr("Open Database"), folder,
        tr("SQLite databases (*.sqlite *.sqlite3 *.db *.db3);;All files (*)"));
    if (!file.isEmpty()) openFile(file);
}

void MainWindow::openSample() {
    const QString error = ensureSampleDatabase(m_sampleFile);
    if (error.isEmpty()) return openFile(m_sampleFile);
    showError(error);
    Q_EMIT openFailed(error);
}

void MainWindow::openLast() {
    const QString last = m_recentFiles.files().value(0);
    if (last.isEmpty() || !QFileInfo::exists(last)) return openSample();
    openFile(last);
}

void MainWindow::openAnyFile(const QString& file) {
    if (isQueryFileName(file)) return openQueryFile(file);
    isSqlFileName(file) ? openTextFile(file) : openFile(file);
}

void MainWindow::openFile(const QString& file) {
    // Nothing is ever written: the builder makes SELECT statements only.
    auto settings = HostKit::ConnectionSettings::sqliteFile(QFileInfo(file).absoluteFilePath());
    settings.readOnly = true;
    m_isOpening = true;
    statusBar()->showMessage(tr("Opening \"%1\"…").arg(settings.displayName()));
    const int number = ++m_openNumber;
    HostKit::Database::openInBackground(
        settings, [window = QPointer(this), number, path = settings.databaseFile](
                      const HostKit::Database& database, const QString& error) {
            if (window && number == window->m_openNumber)
                window->finishOpening(path, database, error);
        });
}

void MainWindow::finishOpening(const QString& file, const HostKit::Database& database,
                               const QString& error) {
    m_isOpening = false;
    statusBar()->clearMessage();
    if (error.isEmpty()) return takeDatabase(file, database);
    if (!QFileInfo::exists(file)) m_recentFiles.remove(file);
    updateRecentFiles();
    showError(error);
    Q_EMIT openFailed(error);
    if (m_opening) failQuery(error);
}

/// Text in the SQL tab stays there, so only the query is at stake, unless another one comes.
void MainWindow::takeDatabase(const QString& file, const HostKit::Database& database) {
    const bool mayGo = m_opening ? confirmLosingWork() : confirmLosingQuery(false);
    if (!mayGo) return m_opening.reset();
    m_recentFiles.add(file);
    updateRecentFiles();
    if (m_workspace) saveState();
    adopt(database);
    if (const auto state = m_states.find(databaseFile())) restoreState(*state);
    Q_EMIT databaseOpened();
    if (m_opening) loadQuery();
}

void MainWindow::adopt(const HostKit::Database& database) {
    const std::unique_ptr<Workspace> earlier = std::move(m_workspace);
    m_workspace = std::make_unique<Workspace>(database);
    m_isSchemaLoaded = false;
    m_isSchemaExpanded = false;
    m_messageBar->hide();
    m_grid->setDatabase(database);
    m_builder->setEngine(m_workspace->engine());
    connectEngine();
    m_workspace->connect();
    setQueryFile(QString());
    updateActions();
}

void MainWindow::connectEngine() {
    using Emitter = QBEngineSignalEmitter;
    const Emitter* emitter = m_workspace->engine()->signalEmitter();
    connect(emitter, &Emitter::topLevelQueryComponentElementModified, this,
            [this](QBEngine*, const QSet<TopLevelQueryComponentElementEnum>& elements) {
                m_messageBar->withdrawOfQuery();
                if (elements.contains(ElementSource)) Q_EMIT sourcesChanged();
            });
    connect(emitter, &Emitter::identifierCandidateChildrenUpdateEnded, this,
            [this](QBEngine*, const QBIdentifierCandidate* candidate) {
                if (candidate && candidate == m_workspace->defaultSchemaCandidate())
                    m_isSchemaLoaded = true;
            });
}

/// A newcomer wants to see tables, not a closed schema.
void MainWindow::showDefaultSchema() {
    if (!m_workspace || m_isSchemaExpanded) return;
    const auto* tree = objectTree()->findChild<QTreeWidget*>();
    const QList<QTreeWidgetItem*> found =
        tree->findItems(m_workspace->defaultSchema(), Qt::MatchExactly);
    if (found.isEmpty()) return;
    m_isSchemaExpanded = true;
    found.first()->setExpanded(true);
}

bool MainWindow::isDatabaseShown() const {
    return m_isSchemaLoaded && objectTree()->isSettled();
}

// ---- The query

void MainWindow::startQuery() {
    if (!m_workspace || !confirmLosingWork()) return;
    adopt(m_workspace->database());
    m_sqlTab->startAnew();
}

/// Who looks at a text that was never applied means that text, not the query behind it.
void MainWindow::takeQuery(bool run) {
    if (!m_workspace) return;
    if (!isTextInFront() || !m_sqlTab->hasUnappliedText()) return takeBuiltQuery(run);
    m_sqlTab->apply([this, run](bool isApplied) {
        if (isApplied) return takeBuiltQuery(run);
        showNote(tr("The SQL text is not applied, so nothing was done."));
        editText();
    });
}

void MainWindow::takeBuiltQuery(bool run) {
    if (!m_workspace) return;
    if (!m_builder->needShowBuildWarning()) return handOutQuery(run);
    m_messageBar->ask(
        tr("Some parts of the query are marked as incomplete, so the server may refuse it."),
        {run ? tr("&Run anyway") : tr("&Copy anyway"), [this, run] {
             handOutQuery(run);
         }});
}

void MainWindow::handOutQuery(bool run) {
    if (!m_workspace) return;
    const QString text = QString::fromStdString(m_workspace->engine()->buildQuery());
    if (run) return m_grid->run(text);
    QApplication::clipboard()->setText(text);
    showNote(tr("The SQL text is on the clipboard."));
}

// ---- What the user sees of it

void MainWindow::showError(const QString& text) {
    m_messageBar->show(MessageBar::Kind::Error, text);
}

void MainWindow::showNote(const QString& text) {
    statusBar()->showMessage(text, noteMs);
}

void MainWindow::updateTitle() {
    QStringList names;
    if (!m_queryFile.isEmpty()) names.append(QFileInfo(m_queryFile).fileName());
    if (m_workspace) names.append(m_workspace->database().settings().displayName());
    names.append(QStringLiteral("Joinery"));
    names.first() += QLatin1String("[*]");
    setWindowTitle(names.join(QStringLiteral(" – ")));
    setWindowModified(isWorkUnsaved());
}

void MainWindow::updateActions() {
    const bool hasDatabase = m_workspace != nullptr;
    for (QAction* action : {m_actions->newQuery, m_actions->run, m_actions->copyText,
                            m_actions->reload, m_actions->saveQuery, m_actions->saveQueryAs})
        action->setEnabled(hasDatabase);
    if (auto* box = m_builder->findChild<QDialogButtonBox*>())
        for (const auto which : {QDialogButtonBox::Yes, QDialogButtonBox::Ok})
            box->button(which)->setEnabled(hasDatabase);
    m_actions->stop->setEnabled(m_grid->isRunning());
    updateTextActions();
}

void MainWindow::updateRecentFiles() {
    m_actions->setRecentFiles(m_recentFiles.files(), m_recentQueries.files(),
                              m_recentTexts.files());
}

void MainWindow::showAbout() {
    QMessageBox::about(this, tr("About Joinery"),
                       tr("Joinery %1\n\nComposes SQL queries: pick tables, watch the text grow, "
                          "run it.")
                           .arg(QLatin1String(JOINERY_VERSION)));
}

void MainWindow::setTheme(Theme theme) {
    checkChoice(m_actions->themes, nameOfTheme(theme));
    m_themeSwitcher.apply(theme);
}

void MainWindow::setLanguage(const QString& code) {
    checkChoice(m_actions->languages, code);
    applyLanguage(code);
}

void MainWindow::retranslate() {
    m_actions->retranslate();
    m_builder->setAccessibleName(tr("Query builder"));
    updateTextActions();
    updateHistoryActions();
    updateTitle();
}

// ---- State

QString MainWindow::databaseFile() const {
    return m_workspace ? m_workspace->database().settings().databaseFile : QString();
}

void MainWindow::restoreSettings() {
    resize(1200, 800);
    const auto splitters = findChildren<QSplitter*>();
    for (QSplitter* splitter : splitters)
        splitter->setSizes(firstSizes(splitter));
    // The database opened last is the one that is most likely opened now.
    if (const auto state = m_states.newest()) restoreState(*state);
    m_grid->setRowLimit(m_settings->value(QLatin1String(rowLimitKey), m_grid->rowLimit()).toInt());
    setTheme(themeOfName(m_settings->value(QLatin1String(themeKey)).toString()));
    setLanguage(m_settings->value(QLatin1String(languageKey)).toString());
}

void MainWindow::restoreState(const WindowState& state) {
    m_builder->loadGlobalPreferences(state.preferences);
    m_builder->canvasCommands()->setZoom(state.zoom);
    m_splitter->restoreState(state.rows);
    // Nothing moves under the hand of a user who has arranged the window while it was opening.
    if (std::exchange(m_restoredLayout, state.layout) == state.layout) return;
    m_builder->loadWidgetLayoutJsonString(state.layout);
    if (m_givenSize.isValid()) setGivenSize(m_givenSize);
}

void MainWindow::setGivenSize(const QSize& size) {
    m_givenSize = size;
    setWindowState(windowState() & ~Qt::WindowMaximized);
    resize(size);
}

void MainWindow::saveState() {
    m_states.store(databaseFile(),
                   {m_builder->obtainWidgetLayoutJsonString(), m_splitter->saveState(),
                    m_builder->obtainGlobalPreferences(), m_builder->canvasCommands()->zoom()});
    m_settings->setValue(QLatin1String(rowLimitKey), m_grid->rowLimit());
}

// ---- Events

void MainWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::LanguageChange) retranslate();
    // With another style a button box shows all of its buttons again.
    if (event->type() == QEvent::StyleChange)
        QTimer::singleShot(0, this, &MainWindow::hideCancelButton);
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (!confirmLosingWork()) return event->ignore();
    saveState();
    QMainWindow::closeEvent(event);
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (draggedFile(event->mimeData()).isEmpty()) return;
    event->setDropAction(Qt::CopyAction);
    event->accept();
}

void MainWindow::dropEvent(QDropEvent* event) {
    const QString file = draggedFile(event->mimeData());
    if (file.isEmpty()) return;
    event->setDropAction(Qt::CopyAction);
    event->accept();
    openAnyFile(file);
}

void MainWindow::keyPressEvent(QKeyEvent* event) {
    // No shortcut: in the object tree this key refreshes, and two claims would cancel out.
    if (event->key() == Qt::Key_F5 && event->modifiers() == Qt::NoModifier) return runQuery();
    QMainWindow::keyPressEvent(event);
}

}  // namespace QB::Desk
