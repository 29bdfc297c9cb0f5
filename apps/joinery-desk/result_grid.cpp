#include "apps/joinery-desk/result_grid.h"

#include <QAction>
#include <QClipboard>
#include <QComboBox>
#include <QEvent>
#include <QGuiApplication>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QStatusBar>
#include <QTableView>
#include <QVBoxLayout>
#include <algorithm>

#include "apps/joinery-desk/cell_text.h"
#include "apps/joinery-desk/message_bar.h"
#include "apps/joinery-desk/result_model.h"

namespace QB::Desk {
namespace {

constexpr int narrowestColumn = 60;  // logical pixels
constexpr int widestColumn = 320;
constexpr int contextLength = 40;  // characters of the statement that an error quotes

/// The rectangle around the selected cells.
struct Selection {
    int top = INT_MAX, left = INT_MAX, bottom = -1, right = -1;

    explicit Selection(const QItemSelection& ranges) {
        for (const QItemSelectionRange& range : ranges) {
            top = std::min(top, range.top());
            left = std::min(left, range.left());
            bottom = std::max(bottom, range.bottom());
            right = std::max(right, range.right());
        }
    }
    bool isEmpty() const { return bottom < 0; }
};

QString timeText(qint64 ms) {
    if (ms < 1) return ResultGrid::tr("less than 1 ms");
    if (ms < 1000) return ResultGrid::tr("%1 ms").arg(ms);
    return ResultGrid::tr("%1 s").arg(QLocale().toString(double(ms) / 1000, 'f', 1));
}

/// Where an error lies: the line, and the text from there on.
QString placeText(const QString& sql, int position) {
    const int line = sql.leftRef(position).count(QLatin1Char('\n')) + 1;
    const QString rest =
        sql.mid(position, contextLength).section(QLatin1Char('\n'), 0, 0).trimmed();
    if (rest.isEmpty()) return ResultGrid::tr("At the end of the text.");
    return ResultGrid::tr("In line %1, at: %2").arg(line).arg(rest);
}

}  // namespace

ResultGrid::ResultGrid(QWidget* parent)
    : QWidget(parent)
    , m_model(new ResultModel(this))
    , m_messageBar(new MessageBar)
    , m_view(new QTableView)
    , m_foot(new QStatusBar)
    , m_status(new QLabel)
    , m_limitLabel(new QLabel)
    , m_limit(new QComboBox)
    , m_cancel(new QPushButton) {
    setUpView();
    setUpFootLine();
    retranslate();
    showStatus();
}

ResultGrid::~ResultGrid() = default;

void ResultGrid::setUpView() {
    m_view->setObjectName(QStringLiteral("resultView"));
    m_view->setModel(m_model);
    m_view->setAlternatingRowColors(true);
    m_view->setWordWrap(false);
    m_view->setTabKeyNavigation(false);
    m_view->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_view->horizontalHeader()->setHighlightSections(false);
    m_view->verticalHeader()->setHighlightSections(false);
    m_view->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_view->verticalHeader()->setDefaultSectionSize(m_view->fontMetrics().height() + 8);
    m_view->setContextMenuPolicy(Qt::ActionsContextMenu);
    for (const bool withHeaders : {false, true}) {
        auto* action = new QAction(m_view);
        action->setShortcut(withHeaders ? QKeySequence(Qt::CTRL + Qt::SHIFT + Qt::Key_C)
                                        : QKeySequence(QKeySequence::Copy));
        action->setShortcutContext(Qt::WidgetShortcut);
        connect(action, &QAction::triggered, this,
                [this, withHeaders] { copySelection(withHeaders); });
        m_view->addAction(action);
    }
}

void ResultGrid::setUpFootLine() {
    m_status->setObjectName(QStringLiteral("resultStatus"));
    m_cancel->setObjectName(QStringLiteral("cancelButton"));
    m_limit->setObjectName(QStringLiteral("rowLimit"));
    m_status->setTextInteractionFlags(Qt::TextSelectableByMouse);
    for (const int limit : {100, 1000, 10000, 100000, 0})
        m_limit->addItem(QString(), limit);
    setRowLimit(HostKit::StatementOptions().rowCap);
    m_limitLabel->setBuddy(m_limit);
    connect(m_cancel, &QPushButton::clicked, this, &ResultGrid::cancel);

    m_foot->setSizeGripEnabled(false);
    m_foot->setContentsMargins(6, 0, 4, 0);
    m_foot->addWidget(m_status, 1);
    m_foot->addPermanentWidget(m_cancel);
    m_foot->addPermanentWidget(m_limitLabel);
    m_foot->addPermanentWidget(m_limit);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(m_messageBar);
    layout->addWidget(m_view, 1);
    layout->addWidget(m_foot);
}

void ResultGrid::setDatabase(const HostKit::Database& database) {
    const bool wasRunning = isRunning();
    m_runner = std::make_unique<HostKit::StatementRunner>(database);
    connectRunner();
    m_model->reset(QStringList());
    m_messageBar->hide();
    m_state = State::Idle;
    showStatus();
    if (wasRunning) Q_EMIT runningChanged(false);
}

void ResultGrid::connectRunner() {
    using Runner = HostKit::StatementRunner;
    connect(m_runner.get(), &Runner::columnsReady, this, &ResultGrid::showColumns);
    connect(m_runner.get(), &Runner::rowsReady, this, &ResultGrid::showRows);
    connect(m_runner.get(), &Runner::finished, this,
            [this](const HostKit::StatementSummary& summary) {
                m_state = State::Finished;
                m_summary = summary;
                end(QString());
            });
    connect(m_runner.get(), &Runner::failed, this, [this](const QString& message, int position) {
        m_state = State::Failed;
        end(position < 0 ? message : message + QLatin1Char('\n') + placeText(m_sql, position));
    });
    connect(m_runner.get(), &Runner::cancelled, this, [this] {
        m_state = State::Cancelled;
        end(QString());
    });
}

void ResultGrid::run(const QString& sql) {
    if (!m_runner) return;
    m_sql = sql;
    m_state = State::Running;
    m_summary = HostKit::StatementSummary();
    m_areColumnsFitted = false;
    m_messageBar->hide();
    m_model->reset(QStringList());
    HostKit::StatementOptions options;
    options.rowCap = rowLimit();
    m_runner->run(sql, options);
    showStatus();
    Q_EMIT runningChanged(true);
}

void ResultGrid::cancel() {
    if (m_runner) m_runner->cancel();
}

bool ResultGrid::isRunning() const {
    return m_state == State::Running;
}

int ResultGrid::rowLimit() const {
    return m_limit->currentData().toInt();
}

void ResultGrid::setRowLimit(int limit) {
    const int index = m_limit->findData(limit);
    if (index >= 0) m_limit->setCurrentIndex(index);
}

void ResultGrid::showColumns(const QStringList& names) {
    m_model->reset(names);
    fitColumns();
}

void ResultGrid::showRows(const QVector<QVariantList>& rows) {
    m_model->append(rows);
    if (!m_areColumnsFitted) fitColumns();
    m_areColumnsFitted = true;
    showStatus();
}

void ResultGrid::fitColumns() {
    m_view->resizeColumnsToContents();
    for (int column = 0; column < m_model->columnCount(); ++column) {
        const int width = m_view->columnWidth(column) + 8;
        m_view->setColumnWidth(column, std::clamp(width, narrowestColumn, widestColumn));
    }
}

void ResultGrid::end(const QString& error) {
    if (!error.isEmpty()) m_messageBar->show(MessageBar::Kind::Error, error);
    showStatus();
    Q_EMIT runningChanged(false);
    Q_EMIT ended(error);
}

/// Rows, or an error, have the room that nothing needs before a query ran.
void ResultGrid::showStatus() {
    setVisible(m_state != State::Idle);
    m_cancel->setVisible(isRunning());
    m_status->setText(statusText());
}

QString ResultGrid::rowsText(qint64 count) const {
    // English has no translation file that could choose the plural.
    return count == 1 ? tr("1 row") : tr("%1 rows").arg(QLocale().toString(count));
}

QString ResultGrid::statusText() const {
    const QString rows = rowsText(m_model->rowCount());
    switch (m_state) {
        case State::Idle:
            return tr("No query has run yet");
        case State::Running:
            return tr("Running: %1 so far").arg(rows);
        case State::Failed:
            return tr("The query failed");
        case State::Cancelled:
            return tr("Cancelled after %1").arg(rows);
        case State::Finished:
            break;
    }
    const QString time = timeText(m_summary.elapsedMs);
    if (m_summary.capped)
        return tr("The first %1 in %2; there are more than the row limit lets through")
            .arg(rows, time);
    return tr("%1 in %2").arg(rows, time);
}

bool ResultGrid::hasSelection() const {
    return m_view->selectionModel()->hasSelection();
}

void ResultGrid::copySelection(bool withHeaders) const {
    const QItemSelectionModel* selected = m_view->selectionModel();
    const Selection area(selected->selection());
    if (area.isEmpty()) return;
    const int head = withHeaders ? 1 : 0;
    const QString text = tabSeparated(
        area.bottom - area.top + 1 + head, area.right - area.left + 1, [&](int row, int column) {
            if (row < head) return QVariant(m_model->columnName(area.left + column));
            const QModelIndex index = m_model->index(area.top + row - head, area.left + column);
            return selected->isSelected(index) ? m_model->value(index.row(), index.column())
                                               : QVariant();
        });
    QGuiApplication::clipboard()->setText(text);
}

void ResultGrid::retranslate() {
    m_view->setAccessibleName(tr("Result rows"));
    m_view->actions().at(0)->setText(tr("&Copy"));
    m_view->actions().at(1)->setText(tr("Copy with &headers"));
    m_cancel->setText(tr("&Stop"));
    m_cancel->setToolTip(tr("Stop the query (Esc)"));
    m_limitLabel->setText(tr("Row &limit:"));
    m_limit->setAccessibleName(tr("Row limit"));
    for (int i = 0; i < m_limit->count(); ++i) {
        const int limit = m_limit->itemData(i).toInt();
        m_limit->setItemText(i, limit > 0 ? QLocale().toString(limit) : tr("none"));
    }
}

void ResultGrid::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() != QEvent::LanguageChange) return;
    retranslate();
    showStatus();
}

}  // namespace QB::Desk
