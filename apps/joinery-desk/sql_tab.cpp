#include "apps/joinery-desk/sql_tab.h"

#include <QAccessible>
#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QStyle>
#include <QTextBlock>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "apps/joinery-desk/builder_text.h"
#include "apps/joinery-desk/sql_editor.h"
#include "engine/engine_linux.h"
#include "hostkit/threads.h"

namespace QB::Desk {
namespace {

constexpr int pauseMs = 250;     // without typing, before the text is checked
constexpr int patienceMs = 700;  // without an answer, before the earlier one is taken away

bool isApplyKey(const QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    return isReturn && (event->modifiers() & ~Qt::KeypadModifier) == Qt::ControlModifier;
}

void describe(QAbstractButton* button, const QString& text, const QString& hint) {
    button->setText(text);
    button->setToolTip(hint);
    button->setAccessibleDescription(hint);
}

}  // namespace

SqlTab::SqlTab(const QueryParsing& parsing, QWidget* parent)
    : QWidget(parent)
    , m_editor(new SqlEditor)
    , m_icon(new QLabel)
    , m_message(new QLabel)
    , m_place(new QLabel)
    , m_goToError(new QToolButton)
    , m_load(new QPushButton)
    , m_apply(new QPushButton)
    , m_builderText(new BuilderText(BuilderText::Extent::LayerUnderEdit, this))
    , m_checker(parsing.check)
    , m_applier(new QueryApplier(parsing, m_builderText, this)) {
    m_pause.setSingleShot(true);
    m_pause.setInterval(pauseMs);
    m_patience.setSingleShot(true);
    m_patience.setInterval(patienceMs);
    setUpLayout();
    connectParts();
    retranslate();
}

SqlTab::~SqlTab() = default;

void SqlTab::setUpLayout() {
    m_editor->setObjectName(QStringLiteral("sqlEditor"));
    m_message->setObjectName(QStringLiteral("sqlMessage"));
    m_goToError->setObjectName(QStringLiteral("sqlGoToError"));
    m_place->setObjectName(QStringLiteral("sqlPlace"));
    m_load->setObjectName(QStringLiteral("sqlLoad"));
    m_apply->setObjectName(QStringLiteral("sqlApply"));
    m_message->setTextFormat(Qt::PlainText);
    m_message->setWordWrap(true);
    m_message->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_goToError->setFocusPolicy(Qt::StrongFocus);
    m_goToError->setToolButtonStyle(Qt::ToolButtonTextOnly);
    for (QPushButton* button : {m_load, m_apply})
        button->setAutoDefault(false);

    auto* told = new QHBoxLayout;
    told->addWidget(m_icon, 0, Qt::AlignTop);
    told->addWidget(m_message, 1, Qt::AlignVCenter);
    told->addWidget(m_goToError, 0, Qt::AlignTop);
    told->addWidget(m_place, 0, Qt::AlignTop);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(m_load);
    buttons->addWidget(m_apply);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_editor, 1);
    layout->addLayout(told);
    layout->addLayout(buttons);
    setFocusProxy(m_editor);
}

void SqlTab::connectParts() {
    connect(m_editor, &QPlainTextEdit::textChanged, this, &SqlTab::takeEdit);
    connect(m_editor, &SqlEditor::inserted, this, &SqlTab::takeInserted);
    connect(m_editor, &QPlainTextEdit::cursorPositionChanged, this, &SqlTab::showPlace);
    connect(m_editor->document(), &QTextDocument::modificationChanged, this, &SqlTab::changed);
    connect(&m_pause, &QTimer::timeout, this, &SqlTab::checkNow);
    connect(&m_patience, &QTimer::timeout, this, &SqlTab::showMessage);
    connect(&m_checker, &SqlChecker::checked, this, &SqlTab::takeResult);
    connect(m_builderText, &QBPanelWidget::engineSet, this, &SqlTab::connectEngine);
    connect(m_builderText, &BuilderText::ready, this, &SqlTab::takeBuilderText);
    connect(m_applier, &QueryApplier::ended, this, &SqlTab::takeApplied);
    connect(m_goToError, &QToolButton::clicked, this, &SqlTab::goToError);
    connect(m_load, &QPushButton::clicked, this, &SqlTab::loadFromBuilder);
    connect(m_apply, &QPushButton::clicked, this, [this] { apply(); });
}

// ---- The engine

void SqlTab::connectEngine() {
    m_applier->reset();
    m_heldText.reset();
    using Emitter = QBEngineSignalEmitter;
    const Emitter* emitter = engine()->signalEmitter();
    m_textStatement = noStatement;
    connect(emitter, &Emitter::databaseTypeChanged, this, [this] {
        m_textStatement = noStatement;  // the root is another one now
        recheck();
    });
    connect(emitter, &Emitter::currentSchemaChanged, this, &SqlTab::recheck);
    connect(emitter, &Emitter::topLevelQueryComponentLayerChanged, this, [this] {
        followBuilder();
        showState();
    });
    connect(emitter, &Emitter::topLevelQueryComponentElementModified, this,
            [this](QBEngine* sending, const QSet<TopLevelQueryComponentElementEnum>&, int,
                   void* sender) {
                // The engine itself announces what a load has replaced.
                if (sender != static_cast<void*>(sending)) m_isBuilderChanged = true;
                followBuilder();
                showState();
            });
    recheck();
    followBuilder();
}

QBEngine_LINUX* SqlTab::engine() const {
    return m_builderText->engine();
}

DatabaseType SqlTab::family() const {
    return engine() ? engine()->databaseType() : DatabaseTypeNone;
}

long SqlTab::statementId(int layer) const {
    const auto* statement =
        engine() && layer >= 0 ? engine()->topLevelQueryComponent(layer) : nullptr;
    return statement ? statement->id() : noStatement;
}

long SqlTab::statementUnderEdit() const {
    return engine() ? statementId(engine()->currentTopLevelQueryComponentLayer()) : noStatement;
}

/// The open layer that the text is for; none while that subquery is closed, or gone.
std::optional<int> SqlTab::targetLayer() const {
    const int shown = engine() ? engine()->currentTopLevelQueryComponentLayer() : 0;
    if (m_textStatement == noStatement) return shown;
    for (int layer = 0; layer <= shown; ++layer)
        if (statementId(layer) == m_textStatement) return layer;
    return std::nullopt;
}

// ---- Text from the builder

void SqlTab::followBuilder() {
    if (m_isFollowing && isVisible() && !m_isFileWaiting) m_builderText->request();
}

void SqlTab::loadFromBuilder() {
    if (!engine()) return;
    m_editor->finishInserting();
    m_isBuilderWanted = true;
    m_builderText->request();
}

void SqlTab::takeBuilderText() {
    const bool isWanted = std::exchange(m_isBuilderWanted, false);
    // The applier asks for the text, too.
    if (!isWanted && (!m_isFollowing || m_applier->isBusy() || m_isFileWaiting)) return;
    // A file has the text of one layer.
    if (m_textStatement != noStatement && m_textStatement != statementUnderEdit()) leaveFile();
    fill(documentText(m_builderText->text()));
    m_isFollowing = true;
    m_textStatement = statementUnderEdit();
    m_heldText.reset();
    showState();
}

/// Only a step away from what was typed can be taken back: one step for all that follows.
void SqlTab::fill(const QString& text) {
    const QScopedValueRollback<bool> guard(m_isFilling, true);
    m_editor->replaceText(
        text, m_isFollowing ? SqlEditor::Undo::WithLastEdit : SqlEditor::Undo::AsOneEdit);
    if (m_file.path.isEmpty()) m_editor->document()->setModified(false);
}

// ---- Checking

void SqlTab::takeEdit() {
    const bool isTyped = !m_isFilling && !m_editor->isStarting();
    if (isTyped) {
        if (isBlank()) m_textStatement = statementUnderEdit();
        m_isFollowing = false;
        m_isTextNew = true;
        m_isFileWaiting = false;
    }
    recheck();
}

void SqlTab::recheck() {
    m_editor->setFamily(family());
    m_checker.cancel();
    m_result.reset();
    m_checked.reset();
    m_applyError.clear();
    m_pause.start();
    if (!m_patience.isActive()) m_patience.start();
    showState();
    if (m_applyDone) finishApply(false);
}

bool SqlTab::isBlank() const {
    for (QTextBlock line = m_editor->document()->begin(); line.isValid(); line = line.next())
        if (!line.text().trimmed().isEmpty()) return false;
    return true;
}

void SqlTab::checkNow() {
    m_pause.stop();
    if (m_editor->isInserting() || m_isFollowing || m_result || m_checker.isChecking() ||
        family() == DatabaseTypeNone)
        return;
    if (isBlank()) {
        m_editor->clearError();
        if (std::exchange(m_isFileWaiting, false)) Q_EMIT fileSettled(false);
        return;
    }
    m_checked = SqlCheckRequest{encodedText(m_editor->text(), m_file.hasCarriageReturns), family(),
                                engine()->currentSchema()};
    m_checker.start(*m_checked);
    showState();
}

void SqlTab::takeResult(const SqlCheckResult& result) {
    m_result = result;
    m_editor->setError(result.place, QString::fromStdString(result.outcome.message));
    showState();
    if (std::exchange(m_isFileWaiting, false)) {
        // A file is a whole query.
        if (result.isAccepted()) engine()->resetUi();
        return apply([this](bool isApplied) { Q_EMIT fileSettled(isApplied); });
    }
    if (m_applyDone) continueApply();
}

// ---- Applying

bool SqlTab::canApply() const {
    return m_state != State::NoDatabase && m_state != State::Blank && m_state != State::Refused &&
           !m_applier->isBusy();
}

bool SqlTab::hasUnappliedText() const {
    const bool isOpen =
        m_state == State::Checking || m_state == State::Refused || m_state == State::Acceptable;
    return m_isTextNew && !m_isFollowing && isOpen;
}

void SqlTab::apply(std::function<void(bool)> done) {
    if (!done)
        done = [](bool) {
        };
    m_editor->finishInserting();
    if (m_applyDone) return done(false);
    m_applyError.clear();
    m_applyDone = std::move(done);
    continueApply();
}

void SqlTab::continueApply() {
    if (m_state == State::Held) return finishApply(true);
    if (!canApply()) return finishApply(false);
    if (!m_result) return checkNow();
    if (openTarget()) return applyNow();
    m_applyError =
        tr("This text is that of a subquery which is closed. Open the subquery to put it "
           "back there, or apply again to put it into the query that is shown.");
    m_textStatement = noStatement;
    showState();
    finishApply(false);
}

/// Closes the layers above the one that the text is for. False if that one is closed.
bool SqlTab::openTarget() {
    const std::optional<int> target = targetLayer();
    if (!target) return false;
    while (engine()->currentTopLevelQueryComponentLayer() > *target)
        engine()->popCurrentLayerTopLevelQueryComponent();
    return true;
}

void SqlTab::applyNow() {
    m_applier->apply(m_checked->text);
    showState();
}

void SqlTab::takeApplied(bool isApplied, const QString& error) {
    if (isApplied) {
        m_isBuilderChanged = false;
        // Not if somebody has typed meanwhile, nor if the text is another one's.
        if (m_applyDone) m_isTextNew = false;
        m_heldStatement = statementUnderEdit();
        if (m_applyDone) m_textStatement = m_heldStatement;
        m_heldText = m_applier->appliedText();
        followBuilder();
    }
    m_applyError = error;
    showState();
    if (m_applyDone) finishApply(isApplied);
}

void SqlTab::finishApply(bool isApplied) {
    const auto done = std::exchange(m_applyDone, nullptr);
    done(isApplied);
}

// ---- Files

void SqlTab::openFile(const QString& path) {
    const int number = ++m_fileNumber;
    const int revision = m_editor->document()->revision();
    HostKit::postToWorker([tab = QPointer(this), number, path, revision] {
        SqlFile file;
        file.path = path;
        const QString error = readSqlFile(file);
        HostKit::postToMainThread([tab, number, file, error, revision] {
            if (tab && tab->m_fileNumber == number) tab->takeFile(file, error, revision);
        });
    });
}

void SqlTab::takeFile(const SqlFile& file, QString error, int revision) {
    const bool isEdited = revision != m_editor->document()->revision();
    if (error.isEmpty() && isEdited && !m_isFollowing)
        error = tr("The text was edited while \"%1\" was read, so it stays. Open the file again.")
                    .arg(QDir::toNativeSeparators(file.path));
    if (!error.isEmpty()) return Q_EMIT fileFailed(error);
    m_file = file;
    m_isFollowing = false;
    m_textStatement = statementId(0);
    m_editor->startAnew(std::exchange(m_file.text, QString()));
    m_isFileWaiting = true;
    m_isTextNew = true;
    Q_EMIT fileOpened(file.path);
    checkNow();
}

/// A text that is wholly in is checked at once: nobody is typing.
void SqlTab::takeInserted() {
    if (!m_isFollowing) checkNow();
}

QString SqlTab::save(const QString& path) {
    m_editor->finishInserting();
    SqlFile file = m_file;
    if (!path.isEmpty()) file.path = path;
    file.text = m_editor->text();
    const QString error = writeSqlFile(file);
    if (!error.isEmpty()) return error;
    m_file = file;
    m_file.text.clear();
    m_file.areLineEndsMixed = false;
    m_editor->document()->setModified(false);
    showState();
    return QString();
}

bool SqlTab::isFileChangedOutside() const {
    const QFileInfo info(m_file.path);
    return info.exists() && info.lastModified() != m_file.lastModified;
}

void SqlTab::leaveFile() {
    ++m_fileNumber;
    m_isFileWaiting = false;
    m_file = SqlFile();
    m_heldText.reset();
    m_textStatement = noStatement;
}

void SqlTab::openText(const QString& text, bool isSaved) {
    leaveFile();
    m_isFollowing = false;
    m_isTextNew = true;
    m_editor->startAnew(text, !isSaved);
    checkNow();
}

void SqlTab::markSaved() {
    m_editor->document()->setModified(false);
    showState();
}

void SqlTab::startAnew() {
    leaveFile();
    m_editor->startAnew(QString());
    m_isFollowing = true;
    followBuilder();
    showState();
}

bool SqlTab::hasUnsavedText() const {
    if (m_isFollowing || !m_editor->document()->isModified()) return false;
    return !m_file.path.isEmpty() || !isBlank();
}

bool SqlTab::holdsQuery() const {
    return m_state == State::Held && !m_isFollowing && m_heldStatement == statementId(0);
}

std::optional<QString> SqlTab::ownText() const {
    if (m_isFollowing || isBlank()) return std::nullopt;
    return m_editor->wholeText();
}

// ---- What the user sees of it

SqlTab::State SqlTab::judge() const {
    if (family() == DatabaseTypeNone) return State::NoDatabase;
    if (m_isFollowing) return isBlank() ? State::Blank : State::Held;
    if (!m_result) return isBlank() ? State::Blank : State::Checking;
    if (!m_result->isAccepted()) return State::Refused;
    const bool wasApplied = m_heldText && *m_heldText == m_checked->text;
    const std::optional<int> target = targetLayer();
    if (!wasApplied || !target || m_heldStatement != statementId(*target)) return State::Acceptable;
    return m_isBuilderChanged ? State::Outdated : State::Held;
}

void SqlTab::showState() {
    const State earlier = std::exchange(m_state, judge());
    if (m_state != State::Refused && m_state != State::Checking) m_editor->clearError();
    showMessage();
    showPlace();
    setEnabled(m_apply, canApply());
    setEnabled(m_load, engine() && !m_isFollowing);
    if (earlier != m_state && m_state == State::Refused) {
        QAccessibleEvent told(m_message, QAccessible::Alert);
        QAccessible::updateAccessibility(&told);
    }
    Q_EMIT changed();
}

/// Without this the focus of a button that has done its work would go to another pane.
void SqlTab::setEnabled(QPushButton* button, bool isEnabled) {
    if (!isEnabled && button->hasFocus()) m_editor->setFocus(Qt::OtherFocusReason);
    button->setEnabled(isEnabled);
}

QString SqlTab::message() const {
    return m_message->text();
}

QString SqlTab::stateText() const {
    if (!m_applyError.isEmpty()) return m_applyError;
    if (m_applier->isBusy()) return tr("Applying…");
    switch (m_state) {
        case State::NoDatabase:
            return tr("Open a database: its family decides how the text is read.");
        case State::Blank:
            return tr("Type or paste a SELECT statement, or open a file.");
        case State::Checking:
            return tr("Checking…");
        case State::Refused:
            return QString::fromStdString(m_result->outcome.message).replace("\n\n", " ");
        case State::Acceptable:
            return tr("Accepted. The builder has another query.");
        case State::Outdated:
            return tr("The query in the builder has been changed since this text was applied.");
        case State::Held:
            break;
    }
    return tr("This is the query in the builder.");
}

void SqlTab::showMessage() {
    // While a user types, the message shall not flicker.
    const bool isPassing = m_state == State::Checking && m_patience.isActive();
    if (isPassing && !m_applier->isBusy() && m_applyError.isEmpty()) return;
    QString text = stateText();
    if (m_file.areLineEndsMixed)
        text += QLatin1Char('\n') + tr("The lines of the file ended in several ways; here, and "
                                       "when it is saved, they all end alike.");
    if (m_editor->hasBrokenLines())
        text += QLatin1Char('\n') + tr("Very long lines were broken after commas and before "
                                       "keywords.");
    m_message->setText(text);
    m_message->setAccessibleName(text);
    const bool isBad = m_state == State::Refused || !m_applyError.isEmpty();
    const bool isGood = m_state == State::Held || m_state == State::Acceptable;
    const auto icon = isBad    ? QStyle::SP_MessageBoxCritical
                      : isGood ? QStyle::SP_DialogApplyButton
                               : QStyle::SP_MessageBoxInformation;
    const int side = style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, this);
    m_icon->setPixmap(style()->standardIcon(icon, nullptr, this).pixmap(side));
    m_goToError->setVisible(m_state == State::Refused && m_editor->hasErrorPlace());
}

void SqlTab::showPlace() {
    const TextPlace place = m_editor->cursorPlace();
    m_place->setText(tr("Line %1, column %2").arg(place.line).arg(place.column));
}

void SqlTab::goToError() {
    m_editor->goToError();
}

QString SqlTab::title() const {
    QString name = tr("SQL");
    if (!m_file.path.isEmpty()) name += QStringLiteral(" – ") + QFileInfo(m_file.path).fileName();
    const int layer = engine() ? targetLayer().value_or(0) : 0;
    if (layer > 0)
        name = tr("%1 for %2")
                   .arg(name,
                        QString::fromStdString(engine()->topLevelQueryComponentLayerName(layer)));
    name.replace(QLatin1Char('&'), QLatin1String("&&"));
    return hasUnsavedText() ? name + QLatin1Char('*') : name;
}

void SqlTab::retranslate() {
    m_editor->setAccessibleName(tr("SQL text"));
    m_editor->setAccessibleDescription(
        tr("Tab indents; Ctrl+Tab goes on to the next field, Ctrl+Shift+Tab back."));
    m_place->setAccessibleName(tr("Place of the cursor"));
    describe(m_goToError, tr("&Go to error"), tr("Put the cursor where the error is (F8)"));
    describe(m_load, tr("Fr&om builder"),
             tr("Show the text of the query in the builder here; undo brings this text back"));
    describe(m_apply, tr("&Apply"), tr("Load this text into the builder (Ctrl+Return)"));
    showState();
}

// ---- Events

void SqlTab::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::LanguageChange) {
        retranslate();
        // The parser's message is in the language of the check.
        if (m_state == State::Refused) recheck();
    }
    if (event->type() == QEvent::StyleChange) showMessage();
}

bool SqlTab::event(QEvent* event) {
    // In here these keys are not the window's.
    if (event->type() == QEvent::ShortcutOverride && isApplyKey(static_cast<QKeyEvent*>(event))) {
        event->accept();
        return true;
    }
    return QWidget::event(event);
}

void SqlTab::keyPressEvent(QKeyEvent* event) {
    if (isApplyKey(event)) return apply();
    QWidget::keyPressEvent(event);
}

void SqlTab::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    followBuilder();
}

}  // namespace QB::Desk
