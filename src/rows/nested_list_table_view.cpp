#include "rows/nested_list_table_view.h"

#include <QAbstractButton>
#include <QCursor>
#include <QDrag>
#include <QDragMoveEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMimeData>
#include <QPointer>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <algorithm>
#include <map>

#include "rows/nested_list_table_view_item_delegate.h"
#include "rows/nested_list_table_view_private.h"

namespace QB {
namespace {

constexpr int bottomMargin = 4;

}  // namespace

QBNestedListTableView::QBNestedListTableView(QWidget* parent)
    : QTableView(parent), d(std::make_unique<Private>(this)) {
    setModel(d->model);
    setItemDelegate(new QBNestedListTableViewItemDelegate(this));
    setFrameShape(QFrame::NoFrame);
    setShowGrid(false);
    setSelectionMode(ExtendedSelection);
    setSelectionBehavior(SelectRows);
    setVerticalScrollMode(ScrollPerPixel);
    setEditTriggers(NoEditTriggers);
    setTabKeyNavigation(false);
    horizontalHeader()->hide();
    // The base hides the corner between its headers in updateGeometries(), which is not called.
    for (auto* corner : findChildren<QAbstractButton*>(QString(), Qt::FindDirectChildrenOnly))
        corner->hide();
    horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    d->updateRowHeight();
    d->bottom->setAlignment(Qt::AlignBottom);
    d->bottom->setContentsMargins(bottomMargin, bottomMargin, bottomMargin, bottomMargin);
    d->extraTimer.setSingleShot(true);
    d->pool.created = [this](QBNestedListRowWidget* widget) {
        d->provider->rowWidgetCreated(widget);
        connect(widget, &QBNestedListRowWidget::accessibleTextChanged, this,
                [this, widget] { d->tellRowEvent(rowOf(widget), QAccessible::NameChanged); });
    };
    connect(&d->extraTimer, &QTimer::timeout, this, [this] { d->forgetExtraRows(); });
}

QBNestedListTableView::~QBNestedListTableView() = default;

QHBoxLayout* QBNestedListTableView::bottomLayout() const {
    return d->bottom;
}

void QBNestedListTableView::setRowProvider(IQBNestedListRowProvider* provider) {
    if (d->provider != nullptr) releaseRows();
    d->provider = provider;
    d->pool.setProvider(provider);
}

void QBNestedListTableView::refreshRows(int rowToSelect) {
    if (d->provider == nullptr) return;
    {
        const QScopedValueRollback<bool> guard(d->isRefreshing, true);
        const Private::Memory memory = d->remember();
        QSet<QBRowKey> wanted = memory.selected;
        wanted << memory.current << memory.top;
        std::map<int, QBRowKey> shown;
        for (const int row : d->pool.rows())
            wanted << (shown[row] = shownKey(row));
        d->released.reset();
        d->takeKeys();
        const QHash<QBRowKey, int> rows = d->findRows(wanted);
        d->extraRows.clear();
        d->pool.renumber([&](int row) { return rows.value(shown.at(row), -1); });
        d->model->setRowCount(d->count());
        updateGeometries();
        d->restoreSelection(memory, rows);
        d->restoreScroll(memory, rows);
        if (rowToSelect >= 0) selectOnly(rowToSelect);
        // In another row the user begins with its main part.
        if (rowToSelect >= 0 && shownKey(currentRow()) != memory.current) d->partPlace = -1;
    }
    d->fill();
    d->dressAll();
    viewport()->update();
}

void QBNestedListTableView::releaseRows() {
    if (d->released || d->provider == nullptr) return;
    const QScopedValueRollback<bool> guard(d->isRefreshing, true);
    d->released = d->remember();
    d->extraRows.clear();
    d->pool.keepOnly([](int) { return false; });
    d->pool.tidySpares();
    d->keys.clear();
    d->model->setRowCount(0);
}

void QBNestedListTableView::updateRowWidgets() {
    for (const int row : d->pool.rows())
        d->pool.update(row);
    d->dressAll();
}

QBNestedListRowWidget* QBNestedListTableView::rowWidget(int row) {
    if (row < 0 || row >= d->count() || d->provider == nullptr) return nullptr;
    if (QBNestedListRowWidget* widget = d->pool.find(row)) return widget;
    QBNestedListRowWidget* widget = d->pool.make(row);
    if (widget == nullptr) return nullptr;
    d->dress(row, widget);
    widget->setGeometry(d->rowGeometry(row, widget));
    widget->show();
    if (!isVisible() || !d->isShowing(row)) {
        d->extraRows.insert(row);
        d->extraTimer.start(0);
    }
    return widget;
}

QWidget* QBNestedListTableView::indexWidget(const QModelIndex& index) {
    return index.isValid() ? rowWidget(index.row()) : nullptr;
}

int QBNestedListTableView::rowOf(const QWidget* widget) const {
    return d->pool.rowOf(widget);
}

void QBNestedListTableView::placeRow(int row) const {
    QBNestedListRowWidget* widget = d->pool.find(row);
    if (widget != nullptr) widget->setGeometry(d->rowGeometry(row, widget));
}

QBRowKey QBNestedListTableView::shownKey(int row) const {
    return row >= 0 && row < d->count() ? d->keys[static_cast<std::size_t>(row)] : QBRowKey();
}

int QBNestedListTableView::currentRow() const {
    return currentIndex().row();
}

std::vector<int> QBNestedListTableView::selectedRowNumbers() const {
    std::vector<int> rows;
    for (const QItemSelectionRange& range : selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row)
            rows.push_back(row);
    }
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

void QBNestedListTableView::selectOnly(int row) {
    if (row < 0 || row >= d->count()) return;
    selectionModel()->setCurrentIndex(d->index(row), QItemSelectionModel::ClearAndSelect);
    scrollTo(d->index(row));
}

void QBNestedListTableView::ensureCurrentRow() {
    if (!hasFocus() || currentRow() >= 0 || d->count() == 0) return;
    selectionModel()->setCurrentIndex(d->index(0), QItemSelectionModel::NoUpdate);
}

void QBNestedListTableView::setRowDragEnabled(bool isEnabled) {
    setDragEnabled(isEnabled);
    setAcceptDrops(isEnabled);
    setDropIndicatorShown(isEnabled);
    setDragDropOverwriteMode(false);
    setDragDropMode(isEnabled ? InternalMove : NoDragDrop);
}

bool QBNestedListTableView::event(QEvent* event) {
    if (event->type() == QEvent::LayoutRequest) updateGeometries();
    // A shortcut of the host comes after what the list does with the key.
    if (event->type() == QEvent::ShortcutOverride) {
        auto* key = static_cast<QKeyEvent*>(event);
        if (Private::isOwnKey(key)) return key->accept(), true;
    }
    return QTableView::event(event);
}

void QBNestedListTableView::changeEvent(QEvent* event) {
    QTableView::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        d->updateRowHeight();
        updateGeometries();
    }
    if (event->type() == QEvent::LayoutDirectionChange) updateGeometries();
}

void QBNestedListTableView::contextMenuEvent(QContextMenuEvent* event) {
    event->accept();
    if (event->reason() == QContextMenuEvent::Keyboard) return d->askForMenu();
    Q_EMIT menuRequested(event->pos());
}

void QBNestedListTableView::focusInEvent(QFocusEvent* event) {
    QTableView::focusInEvent(event);
    ensureCurrentRow();
    d->dressAll();
}

void QBNestedListTableView::focusOutEvent(QFocusEvent* event) {
    QTableView::focusOutEvent(event);
    // The mark stays where the popup that it opened has come from.
    if (event->reason() != Qt::PopupFocusReason) d->dressAll();
}

void QBNestedListTableView::keyPressEvent(QKeyEvent* event) {
    if (!Private::isOwnKey(event)) return QTableView::keyPressEvent(event);
    event->accept();
    d->handleKey(event);
}

void QBNestedListTableView::mousePressEvent(QMouseEvent* event) {
    const QModelIndex index = indexAt(event->localPos().toPoint());
    if (index.row() < 0 || index.column() < 0) return;
    d->pool.holdRow(index.row());
    d->partPlace = -1;
    QTableView::mousePressEvent(event);
}

void QBNestedListTableView::paintEvent(QPaintEvent* event) {
    d->matchBackground();
    QTableView::paintEvent(event);
}

void QBNestedListTableView::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    updateGeometries();
}

void QBNestedListTableView::scrollContentsBy(int dx, int dy) {
    QTableView::scrollContentsBy(dx, dy);
    d->fill();
}

void QBNestedListTableView::showEvent(QShowEvent* event) {
    QTableView::showEvent(event);
    d->matchBackground();
    d->fill();
}

// The base knows nothing of a margin at the lower edge and would take it away.
void QBNestedListTableView::updateGeometries() {
    if (d == nullptr || d->isUpdatingGeometries) return;
    const QScopedValueRollback<bool> guard(d->isUpdatingGeometries, true);
    setViewportMargins(0, 0, 0, d->bottom->sizeHint().height());
    d->updateScrollRange();
    const QRect area = viewport()->geometry();
    verticalHeader()->setGeometry(area.x(), area.y(), 0, area.height());
    horizontalHeader()->setGeometry(area.x(), area.y(), area.width(), 0);
    QMetaObject::invokeMethod(verticalHeader(), "updateGeometries");
    QMetaObject::invokeMethod(horizontalHeader(), "updateGeometries");
    verticalHeader()->setOffset(verticalScrollBar()->value());
    d->updateBottomMargins();
    QAbstractItemView::updateGeometries();
    for (const int row : d->pool.rows())
        placeRow(row);
    d->fill();
}

QModelIndex QBNestedListTableView::moveCursor(CursorAction action,
                                              Qt::KeyboardModifiers modifiers) {
    if (action == MoveHome) return d->index(0);
    if (action == MoveEnd) return d->index(d->count() - 1);
    return QTableView::moveCursor(action, modifiers);
}

void QBNestedListTableView::currentChanged(const QModelIndex& current,
                                           const QModelIndex& previous) {
    QTableView::currentChanged(current, previous);
    if (d->isRefreshing) return;
    d->dressAll();
    Q_EMIT currentRowChosen(current.row());
}

void QBNestedListTableView::selectionChanged(const QItemSelection& selected,
                                             const QItemSelection& deselected) {
    QTableView::selectionChanged(selected, deselected);
    if (d->isRefreshing) return;
    d->dressAll();
    Q_EMIT selectionChosen();
}

void QBNestedListTableView::startDrag(Qt::DropActions) {
    QBNestedListRowWidget* widget = rowWidget(currentRow());
    if (widget == nullptr) return;
    const std::unique_ptr<QBNestedListRowWidget> picture(widget->clone());
    picture->setPalette(palette());
    picture->setFont(font());
    picture->setLayoutDirection(layoutDirection());
    picture->resize(widget->size());
    d->dragged = shownKey(currentRow());
    auto* drag = new QDrag(this);
    drag->setMimeData(newRowMimeData());
    drag->setPixmap(picture->grab());
    // The picture hangs where the row was taken hold of.
    drag->setHotSpot(widget->mapFromGlobal(QCursor::pos()));
    const QPointer<QBNestedListTableView> self(this);
    drag->exec(Qt::MoveAction);  // the drop has done all that is to be done
    if (!self) return;
    d->dragged = QBRowKey();
    d->endDrop();
}

void QBNestedListTableView::dragEnterEvent(QDragEnterEvent* event) {
    event->setAccepted(d->isOwnRow(event));
    if (event->isAccepted()) event->setDropAction(Qt::MoveAction);
}

void QBNestedListTableView::dragMoveEvent(QDragMoveEvent* event) {
    event->setAccepted(d->isOwnRow(event));
    if (!event->isAccepted()) return;
    event->setDropAction(Qt::MoveAction);
    event->accept();
    d->showDropLine(d->dropTarget(event->posF()));
    startAutoScroll();
}

void QBNestedListTableView::dragLeaveEvent(QDragLeaveEvent*) {
    d->endDrop();
}

void QBNestedListTableView::dropEvent(QDropEvent* event) {
    d->endDrop();
    event->setDropAction(Qt::MoveAction);
    event->accept();
    // Rows may have changed on the way.
    if (d->dragged.isValid() && shownKey(currentRow()) != d->dragged)
        selectOnly(d->findRows({d->dragged}).value(d->dragged, -1));
    const bool isThere = !d->dragged.isValid() || shownKey(currentRow()) == d->dragged;
    if (isThere) Q_EMIT rowDropped(d->dropTarget(event->posF()));
}

}  // namespace QB
