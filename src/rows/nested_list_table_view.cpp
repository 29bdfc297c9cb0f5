#include "rows/nested_list_table_view.h"

#include <QAccessible>
#include <QDrag>
#include <QDragMoveEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QPointer>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QSet>
#include <QStandardItemModel>
#include <QTimer>
#include <algorithm>
#include <optional>

#include "rows/nested_list_row_pool.h"
#include "rows/nested_list_table_view_item_delegate.h"
#include "widgets/label.h"

namespace QB {
namespace {

constexpr int leastRowHeight = 23;
constexpr int roomAboutText = 6;
constexpr int bottomMargin = 4;
/// A row keeps at least this width for its texts, however deep it lies.
constexpr int leastRowWidth = 120;
/// A drop at the upper edge of a row goes before that row.
constexpr int dropOffset = 2;

/// The rows as the view's model: they have a number and a text to be read aloud, no more.
class RowModel : public QStandardItemModel {
public:
    explicit RowModel(QBNestedListTableView* view) : QStandardItemModel(0, 1, view), m_view(view) {}

    QVariant data(const QModelIndex& index, int role) const override {
        if (role != Qt::AccessibleTextRole) return {};
        const QBNestedListRowWidget* widget = m_view->rowWidget(index.row());
        return widget == nullptr ? QVariant() : widget->accessibleText();
    }

private:
    QBNestedListTableView* const m_view;  // not owned: the parent
};

/// Where a dragged row would go; lies above the rows.
class DropLine : public QWidget {
public:
    explicit DropLine(QWidget* parent) : QWidget(parent) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        hide();
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter(this).fillRect(rect(), palette().color(QPalette::Highlight));
    }
};

bool isEditKey(int key) {
    return key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_F2 ||
           key == Qt::Key_Space;
}

bool isMenuKey(const QKeyEvent* event) {
    return event->key() == Qt::Key_Menu ||
           (event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier);
}

}  // namespace

class QBNestedListTableView::Private {
public:
    /// What a refresh brings back, by key.
    struct Memory {
        QBRowKey current;
        QSet<QBRowKey> selected;
        QBRowKey top;  // the first row that shows
        int topY = 0;  // where in the viewport it begins
    };

    explicit Private(QBNestedListTableView* owner)
        : q(owner)
        , model(new RowModel(owner))
        , bottom(new QHBoxLayout(owner))
        , pool(owner->viewport())
        , dropLine(new DropLine(owner->viewport())) {}

    int count() const { return static_cast<int>(keys.size()); }
    int rowHeight() const { return q->verticalHeader()->defaultSectionSize(); }
    QModelIndex index(int row) const { return model->index(row, 0); }
    bool isSelected(int row) const { return q->selectionModel()->isSelected(index(row)); }
    bool isShowing(int row) const;

    Memory remember() const;
    void restoreSelection(const Memory& memory, const QHash<QBRowKey, int>& rows);
    void restoreScroll(const Memory& memory, const QHash<QBRowKey, int>& rows);
    QHash<QBRowKey, int> findRows(const Memory& memory) const;

    void fill();
    void forgetExtraRows();
    void dress(int row, QBNestedListRowWidget* widget);
    void dressAll();
    QRect rowGeometry(int row, const QBNestedListRowWidget* widget) const;

    QBLabel* markedPart(const QBNestedListRowWidget* widget) const;
    void movePart(int step);
    void clickPart();
    void showMark();

    void askForMenu();
    int dropTarget(const QPoint& position) const;
    void showDropLine(int target);

    void updateRowHeight();
    void updateBottomMargins();
    void updateScrollRange();

    QBNestedListTableView* const q;
    RowModel* const model;      // owned by q
    QHBoxLayout* const bottom;  // owned by q
    IQBNestedListRowProvider* provider = nullptr;
    QBNestedListRowPool pool;
    DropLine* const dropLine;  // owned by the viewport
    std::vector<QBRowKey> keys;
    std::optional<Memory> released;  // set between releaseRows() and refreshRows()
    std::set<int> extraRows;         // asked for by rowWidget(), until the next event
    QTimer extraTimer;
    int partPlace = -1;  // among the parts of the current row; stays while rows go by; -1: none
    QBRowKey dragged;
    bool isRefreshing = false;
    bool isFilling = false;
    bool isUpdatingGeometries = false;
};

// Rows

bool QBNestedListTableView::Private::isShowing(int row) const {
    const int y = row * rowHeight() - q->verticalScrollBar()->value();
    return y < q->viewport()->height() && y + rowHeight() > 0;
}

QBNestedListTableView::Private::Memory QBNestedListTableView::Private::remember() const {
    if (released) return *released;
    Memory memory;
    memory.current = q->shownKey(q->currentRow());
    for (const int row : q->selectedRowNumbers())
        memory.selected.insert(q->shownKey(row));
    const int scroll = q->verticalScrollBar()->value();
    memory.top = q->shownKey(scroll / rowHeight());
    memory.topY = -(scroll % rowHeight());
    return memory;
}

/// Where the rows of @p memory are now; the selected ones as well.
QHash<QBRowKey, int> QBNestedListTableView::Private::findRows(const Memory& memory) const {
    QHash<QBRowKey, int> rows;
    for (int row = 0; row < count(); ++row) {
        const QBRowKey key = keys[static_cast<std::size_t>(row)];
        if (key == memory.current || key == memory.top || memory.selected.contains(key))
            rows.insert(key, row);
    }
    return rows;
}

void QBNestedListTableView::Private::restoreSelection(const Memory& memory,
                                                      const QHash<QBRowKey, int>& rows) {
    std::vector<int> selected;
    for (const QBRowKey key : memory.selected) {
        const auto found = rows.find(key);
        if (found != rows.end()) selected.push_back(*found);
    }
    std::sort(selected.begin(), selected.end());
    QItemSelection selection;
    for (auto first = selected.begin(); first != selected.end();) {
        auto last = first;
        while (std::next(last) != selected.end() && *std::next(last) == *last + 1)
            ++last;
        selection.append(QItemSelectionRange(index(*first), index(*last)));
        first = std::next(last);
    }
    q->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    q->selectionModel()->setCurrentIndex(index(rows.value(memory.current, -1)),
                                         QItemSelectionModel::NoUpdate);
}

void QBNestedListTableView::Private::restoreScroll(const Memory& memory,
                                                   const QHash<QBRowKey, int>& rows) {
    const int top = rows.value(memory.top, -1);
    if (top >= 0) q->verticalScrollBar()->setValue(top * rowHeight() - memory.topY);
}

void QBNestedListTableView::Private::fill() {
    if (isFilling || provider == nullptr || released || !q->isVisible()) return;
    const QScopedValueRollback<bool> guard(isFilling, true);
    pool.keepOnly([this](int row) { return isShowing(row) || extraRows.count(row) > 0; });
    const int scroll = q->verticalScrollBar()->value();
    const int end = std::min(count(), (scroll + q->viewport()->height()) / rowHeight() + 1);
    for (int row = scroll / rowHeight(); row < end; ++row) {
        QBNestedListRowWidget* widget = q->rowWidget(row);
        if (widget != nullptr) widget->setGeometry(rowGeometry(row, widget));
    }
    pool.tidySpares();
}

/// Rows that rowWidget() made out of sight go when their caller has done with them.
void QBNestedListTableView::Private::forgetExtraRows() {
    extraRows.clear();
    pool.keepOnly([this](int row) { return q->isVisible() && isShowing(row); });
    pool.tidySpares();
}

void QBNestedListTableView::Private::dress(int row, QBNestedListRowWidget* widget) {
    const bool isCurrent = row == q->currentRow();
    widget->setSelectedLook(isSelected(row));
    widget->setCurrentLook(isCurrent);
    widget->setCurrentPart(isCurrent && q->hasFocus() ? markedPart(widget) : nullptr);
}

void QBNestedListTableView::Private::dressAll() {
    for (const int row : pool.rows())
        dress(row, pool.find(row));
}

QRect QBNestedListTableView::Private::rowGeometry(int row,
                                                  const QBNestedListRowWidget* widget) const {
    const int width = q->viewport()->width();
    const int indent = std::max(0, std::min(widget->indentPixels(), width - leastRowWidth));
    const int x = q->isRightToLeft() ? 0 : indent;
    return {x, row * rowHeight() - q->verticalScrollBar()->value(), width - indent, rowHeight()};
}

// Keyboard

QBLabel* QBNestedListTableView::Private::markedPart(const QBNestedListRowWidget* widget) const {
    return partPlace < 0 ? nullptr : widget->parts().value(partPlace);
}

void QBNestedListTableView::Private::movePart(int step) {
    QBNestedListRowWidget* widget = q->rowWidget(q->currentRow());
    if (widget == nullptr) return;
    q->scrollTo(q->currentIndex());
    const int count = widget->parts().size();
    const int place = partPlace < count ? partPlace : -1;
    partPlace = std::max(-1, std::min(place + step, count - 1));
    showMark();
}

/// Shows the mark on the current row and tells a screen reader.
void QBNestedListTableView::Private::showMark() {
    QBNestedListRowWidget* widget = q->rowWidget(q->currentRow());
    if (widget == nullptr) return;
    dress(q->currentRow(), widget);
    if (!QAccessible::isActive() || !q->hasFocus() || widget->currentPart() == nullptr) return;
    QAccessibleEvent event(widget->currentPart(), QAccessible::Focus);
    QAccessible::updateAccessibility(&event);
}

void QBNestedListTableView::Private::clickPart() {
    QBNestedListRowWidget* widget = q->rowWidget(q->currentRow());
    if (widget == nullptr) return;
    q->scrollTo(q->currentIndex());
    QBLabel* part = markedPart(widget);
    if (part == nullptr) part = widget->mainPart();
    if (part != nullptr) part->click();
}

void QBNestedListTableView::Private::askForMenu() {
    QPoint position = q->viewport()->rect().center();
    if (q->currentRow() >= 0) {
        q->scrollTo(q->currentIndex());
        position.setY(q->visualRect(q->currentIndex()).center().y());
    }
    Q_EMIT q->menuRequested(position);
}

// Drag and drop

int QBNestedListTableView::Private::dropTarget(const QPoint& position) const {
    return q->rowAt(position.y() + dropOffset);
}

void QBNestedListTableView::Private::showDropLine(int target) {
    const int row = target < 0 ? count() : target;
    const int y = row * rowHeight() - q->verticalScrollBar()->value();
    dropLine->setGeometry(0, std::max(0, y - 1), q->viewport()->width(), 2);
    dropLine->raise();
    dropLine->show();
}

// Geometry

void QBNestedListTableView::Private::updateRowHeight() {
    const int height = std::max(leastRowHeight, q->fontMetrics().height() + roomAboutText);
    q->verticalHeader()->setMinimumSectionSize(height);
    q->verticalHeader()->setDefaultSectionSize(height);
}

void QBNestedListTableView::Private::updateBottomMargins() {
    const QScrollBar* bar = q->verticalScrollBar();
    const bool hasBar = bar->maximum() > bar->minimum();
    const int trailing = hasBar ? bar->sizeHint().width() + 6 : 5;
    QMargins margins = bottom->contentsMargins();
    if (q->isRightToLeft())
        margins.setLeft(trailing);
    else
        margins.setRight(trailing);
    if (margins != bottom->contentsMargins()) bottom->setContentsMargins(margins);
}

void QBNestedListTableView::Private::updateScrollRange() {
    QScrollBar* bar = q->verticalScrollBar();
    bar->setSingleStep(rowHeight());
    bar->setPageStep(q->viewport()->height());
    bar->setRange(0, std::max(0, count() * rowHeight() - q->viewport()->height()));
    q->horizontalScrollBar()->setRange(0, 0);
}

// The view

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
    horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    d->updateRowHeight();
    d->bottom->setAlignment(Qt::AlignBottom);
    d->bottom->setContentsMargins(bottomMargin, bottomMargin, bottomMargin, bottomMargin);
    d->extraTimer.setSingleShot(true);
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
        const std::vector<QBRowKey> earlierKeys = std::exchange(d->keys, {});
        d->released.reset();
        const int count = d->provider->rowCount();
        d->keys.reserve(static_cast<std::size_t>(count));
        for (int row = 0; row < count; ++row)
            d->keys.push_back(d->provider->rowKey(row));
        d->model->setRowCount(count);
        const QHash<QBRowKey, int> rows = d->findRows(memory);
        d->extraRows.clear();
        d->pool.keepOnly([this](int) { return false; });
        updateGeometries();
        setAutoScroll(false);
        d->restoreSelection(memory, rows);
        setAutoScroll(true);
        d->restoreScroll(memory, rows);
        if (rowToSelect >= 0) selectOnly(rowToSelect);
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

void QBNestedListTableView::setRowDragEnabled(bool isEnabled) {
    setDragEnabled(isEnabled);
    setAcceptDrops(isEnabled);
    setDropIndicatorShown(isEnabled);
    setDragDropOverwriteMode(false);
    setDragDropMode(isEnabled ? InternalMove : NoDragDrop);
}

bool QBNestedListTableView::event(QEvent* event) {
    if (event->type() == QEvent::LayoutRequest) updateGeometries();
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
    d->dressAll();
}

void QBNestedListTableView::focusOutEvent(QFocusEvent* event) {
    QTableView::focusOutEvent(event);
    // The mark stays where the popup that it opened has come from.
    if (event->reason() != Qt::PopupFocusReason) d->dressAll();
}

void QBNestedListTableView::keyPressEvent(QKeyEvent* event) {
    const bool isCtrl = event->modifiers() == Qt::ControlModifier;
    const int forward = isRightToLeft() ? -1 : 1;
    event->accept();
    if (isMenuKey(event)) return d->askForMenu();
    if (isEditKey(event->key()) && !isCtrl) return d->clickPart();
    if (isCtrl && event->key() == Qt::Key_Up) return Q_EMIT moveUpRequested();
    if (isCtrl && event->key() == Qt::Key_Down) return Q_EMIT moveDownRequested();
    switch (event->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            return;
        case Qt::Key_Left:
            return d->movePart(-forward);
        case Qt::Key_Right:
            return d->movePart(forward);
        case Qt::Key_Insert:
            return Q_EMIT addRequested();
        case Qt::Key_Delete:
            return Q_EMIT removeRequested();
        default:
            QTableView::keyPressEvent(event);
    }
}

void QBNestedListTableView::mousePressEvent(QMouseEvent* event) {
    const QModelIndex index = indexAt(event->localPos().toPoint());
    if (index.row() < 0 || index.column() < 0) return;
    d->pool.holdRow(index.row());
    d->partPlace = -1;
    QTableView::mousePressEvent(event);
}

void QBNestedListTableView::paintEvent(QPaintEvent* event) {
    // The area beneath the rows looks like the list.
    if (palette().color(QPalette::Base) != palette().color(QPalette::Window)) {
        QPalette changed = palette();
        changed.setBrush(QPalette::Window, changed.brush(QPalette::Base));
        setPalette(changed);
        setAutoFillBackground(true);
    }
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
    if (!d->isRefreshing) d->dressAll();
}

void QBNestedListTableView::startDrag(Qt::DropActions) {
    QBNestedListRowWidget* widget = rowWidget(currentRow());
    if (widget == nullptr) return;
    d->dragged = shownKey(currentRow());
    const std::unique_ptr<QBNestedListRowWidget> picture(widget->clone());
    picture->resize(widget->size());
    auto* drag = new QDrag(this);
    drag->setMimeData(new QMimeData);
    drag->setPixmap(picture->grab());
    const QPointer<QBNestedListTableView> self(this);
    drag->exec(Qt::MoveAction);  // the drop has done all that is to be done
    if (self) d->dropLine->hide();
}

void QBNestedListTableView::dragEnterEvent(QDragEnterEvent* event) {
    if (event->source() == this) event->acceptProposedAction();
}

void QBNestedListTableView::dragMoveEvent(QDragMoveEvent* event) {
    event->ignore();
    if (event->source() != this) return;
    event->setDropAction(Qt::MoveAction);
    event->accept();
    d->showDropLine(d->dropTarget(event->pos()));
    startAutoScroll();
}

void QBNestedListTableView::dragLeaveEvent(QDragLeaveEvent*) {
    stopAutoScroll();
    d->dropLine->hide();
}

void QBNestedListTableView::dropEvent(QDropEvent* event) {
    stopAutoScroll();
    d->dropLine->hide();
    event->setDropAction(Qt::MoveAction);
    event->accept();
    Q_EMIT rowDropped(d->dropTarget(QPoint(0, qRound(event->posF().y()))));
}

}  // namespace QB
