#include "apps/joinery-desk/scripted_start.h"

#include <QApplication>
#include <QPixmap>
#include <QTabWidget>
#include <QTreeWidget>
#include <algorithm>
#include <utility>

#include "apps/joinery-desk/main_window.h"
#include "apps/joinery-desk/message_bar.h"
#include "apps/joinery-desk/result_grid.h"
#include "apps/joinery-desk/sql_tab.h"
#include "apps/joinery-desk/workspace.h"
#include "diagrampanel/diagram_object_tree_panel_widget.h"
#include "engine/engine_linux.h"
#include "engine/engine_signal_emitter.h"
#include "frame/abstract_query_preview_panel_widget.h"
#include "frame/query_builder_widget.h"

namespace QB::Desk {
namespace {

constexpr int pollMs = 20;
constexpr int quietPolls = 5;
constexpr int loadingRole = Qt::UserRole + 2;

QTreeWidgetItem* childNamed(const QTreeWidgetItem* parent, const QString& name) {
    for (int i = 0; i < parent->childCount(); ++i)
        if (parent->child(i)->text(0) == name) return parent->child(i);
    for (int i = 0; i < parent->childCount(); ++i)
        if (parent->child(i)->text(0).compare(name, Qt::CaseInsensitive) == 0)
            return parent->child(i);
    return nullptr;
}

}  // namespace

ScriptedStart::ScriptedStart(MainWindow* window, const CommandLine& options)
    : m_window(window)
    , m_deadlineMs(options.deadlineMs)
    , m_pictureFile(options.screenshot)
    , m_pictureOf(options.part) {
    connect(window, &MainWindow::openFailed, this,
            [this](const QString& message) { m_openError = message; });
    connect(window, &MainWindow::sourcesChanged, this, [this] { ++m_sourceChanges; });
    m_steps.push_back([this] { return waitForDatabase(); });
    if (!options.queryFile.isEmpty()) planQuery(options);
    if (!options.sqlFile.isEmpty()) planText(options.sqlFile);
    for (const QString& table : options.tables)
        planAdding(table);
    for (const QString& name : options.tabs)
        m_steps.push_back([this, name] { return bringUpTab(name); });
    m_steps.push_back([this] { return waitForPreview(); });
    if (options.run) planRun();
    connect(&m_timer, &QTimer::timeout, this, &ScriptedStart::poll);
    m_clock.start();
    m_timer.start(pollMs);
}

void ScriptedStart::poll() {
    while (!m_steps.empty()) {
        const Progress progress = m_steps.front()();
        if (progress == Progress::Failed) return end();
        if (progress == Progress::Wait) break;
        m_steps.pop_front();
    }
    if (m_steps.empty()) return end();
    if (m_clock.elapsed() < m_deadlineMs) return;
    fail(ExitDeadline, tr("The deadline of %1 s has passed.").arg(m_deadlineMs / 1000));
    end();
}

void ScriptedStart::end() {
    m_timer.stop();
    takePicture();
    Q_EMIT finished(m_exitCode, m_message);
}

/// Of a failure too: the window shows it in place.
void ScriptedStart::takePicture() {
    if (m_pictureFile.isEmpty()) return;
    auto* part = m_pictureOf.isEmpty() ? m_window : m_window->findChild<QWidget*>(m_pictureOf);
    if (part != nullptr && part->grab().save(m_pictureFile)) return;
    if (m_exitCode != ExitOk) return;
    fail(ExitNoImage, tr("The picture \"%1\" could not be written.").arg(m_pictureFile));
}

ScriptedStart::Progress ScriptedStart::fail(ExitCode code, const QString& message) {
    m_exitCode = code;
    m_message = message;
    return Progress::Failed;
}

ScriptedStart::Progress ScriptedStart::waitForDatabase() {
    if (!m_openError.isEmpty()) return fail(ExitNoDatabase, m_openError);
    if (!m_textError.isEmpty()) return fail(ExitNoText, m_textError);
    if (!m_window->isDatabaseShown()) return Progress::Wait;
    using Emitter = QBEngineSignalEmitter;
    const Emitter* emitter = m_window->workspace()->engine()->signalEmitter();
    connect(emitter, &Emitter::identifierCandidateChildrenUpdateBegun, this,
            [this] { ++m_runningFetches; });
    connect(emitter, &Emitter::identifierCandidateChildrenUpdateEnded, this,
            [this] { m_runningFetches = std::max(m_runningFetches - 1, 0); });
    return Progress::Done;
}

void ScriptedStart::planText(const QString& file) {
    connect(m_window->sqlTab(), &SqlTab::fileFailed, this, [this](const QString& message) {
        m_isTextSettled = true;
        m_textError = message;
    });
    connect(m_window->sqlTab(), &SqlTab::fileSettled, this, [this](bool isApplied) {
        m_isTextSettled = true;
        m_isTextApplied = isApplied;
    });
    m_steps.push_back([this, file] {
        m_window->openTextFile(file);
        return Progress::Done;
    });
    planTextWait();
}

void ScriptedStart::planTextWait() {
    m_steps.push_back([this] { return m_isTextSettled ? Progress::Done : Progress::Wait; });
    m_steps.push_back([this] {
        if (m_isTextApplied) return Progress::Done;
        return fail(ExitNoText,
                    m_textError.isEmpty() ? m_window->sqlTab()->message() : m_textError);
    });
}

/// A query that opens its own database is on its way already.
void ScriptedStart::planQuery(const CommandLine& options) {
    connect(m_window, &MainWindow::queryOpened, this,
            [this] { m_isTextSettled = m_isTextApplied = true; });
    connect(m_window, &MainWindow::queryFailed, this, [this](const QString& message) {
        m_isTextSettled = true;
        m_textError = message;
    });
    if (!options.opensOwnDatabase())
        m_steps.push_back([this, file = options.queryFile] {
            m_window->openQueryFile(file, MainWindow::QueryDatabase::Present);
            return Progress::Done;
        });
    planTextWait();
}

void ScriptedStart::planAdding(const QString& table) {
    m_steps.push_back([this, table] { return addTable(table); });
    m_steps.push_back(
        [this] { return m_sourceChanges >= m_awaitedChanges ? Progress::Done : Progress::Wait; });
}

/// The row of a table in the default schema, or of "schema.table".
QTreeWidgetItem* ScriptedStart::findTable(const QString& table, bool* isLoading) const {
    const auto* tree = m_window->objectTree()->findChild<QTreeWidget*>();
    const QTreeWidgetItem* root = tree->invisibleRootItem();
    const QTreeWidgetItem* schema = childNamed(root, m_window->workspace()->defaultSchema());
    if (QTreeWidgetItem* row = schema ? childNamed(schema, table) : nullptr) return row;
    const int dot = table.indexOf(QLatin1Char('.'));
    QTreeWidgetItem* other = dot < 0 ? nullptr : childNamed(root, table.left(dot));
    if (!other) return nullptr;
    *isLoading = !other->isExpanded() || other->data(0, loadingRole).toBool() ||
                 !m_window->objectTree()->isSettled();
    other->setExpanded(true);
    return childNamed(other, table.mid(dot + 1));
}

ScriptedStart::Progress ScriptedStart::addTable(const QString& table) {
    bool isLoading = false;
    QTreeWidgetItem* row = findTable(table, &isLoading);
    if (!row && isLoading) return Progress::Wait;
    if (!row) return fail(ExitNoTable, tr("There is no table or view \"%1\".").arg(table));
    m_awaitedChanges = m_sourceChanges + 1;
    m_window->objectTree()->on_diagramPaneObjectTreeWidget_itemDoubleClicked(row, 0);
    return Progress::Done;
}

void ScriptedStart::planRun() {
    connect(m_window->resultGrid(), &ResultGrid::ended, this, [this](const QString& error) {
        m_hasRunEnded = true;
        m_runError = error;
    });
    m_steps.push_back([this] {
        m_window->runQuery();
        return Progress::Done;
    });
    m_steps.push_back([this] {
        // Nobody is there to answer.
        if (m_window->messageBar()->isAsking())
            return fail(ExitQueryFailed, m_window->messageBar()->text());
        return m_hasRunEnded ? Progress::Done : Progress::Wait;
    });
    m_steps.push_back([this] {
        return m_runError.isEmpty() ? Progress::Done : fail(ExitQueryFailed, m_runError);
    });
}

ScriptedStart::Progress ScriptedStart::bringUpTab(const QString& name) {
    if (name.compare(QLatin1String("DIAGRAM"), Qt::CaseInsensitive) == 0) {
        m_window->builder()->obtainDiagramTabs()->setCurrentIndex(0);
        return Progress::Done;
    }
    auto* tabs = m_window->builder()->findChild<QTabWidget*>(QStringLiteral("tabWidget"));
    for (int i = 0; i < tabs->count(); ++i) {
        if (tabs->tabText(i).compare(name, Qt::CaseInsensitive) != 0) continue;
        tabs->setCurrentIndex(i);
        return Progress::Done;
    }
    return fail(ExitUsage, tr("There is no clause \"%1\".").arg(name));
}

ScriptedStart::Progress ScriptedStart::waitForPreview() {
    auto* preview = m_window->builder()->queryPreviewPanel();
    preview->updatePreviewQuery();
    const bool isShown = !preview->needsUpdateQuery() && preview->isEnabled();
    const bool isQuiet = isShown && m_window->objectTree()->isSettled() && m_runningFetches == 0;
    // The panels ask for fields that they miss, and mark what is missing when they have come.
    m_quietPolls = isQuiet ? m_quietPolls + 1 : 0;
    return m_quietPolls >= quietPolls ? Progress::Done : Progress::Wait;
}

}  // namespace QB::Desk
