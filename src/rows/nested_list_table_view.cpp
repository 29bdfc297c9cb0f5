#include "rows/nested_list_table_view.h"

#include <QAbstractButton>
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

const auto rowFormat = QStringLiteral("application/x-joinery-row");

/// Another program of this kind has rows as well.
QByteArray processNumber() {
    return QByteArray::number(QCoreApplication::applicationPid());
}

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

/// The keys of the number pad count as those beside the letters.
Qt::KeyboardModifiers modifiersOf(const QKeyEvent* event) {
    return event->modifiers() & ~Qt::KeypadModifier;
}

bool isMenuKey(const QKeyEvent* event) {
    return event->key() == Qt::Key_Menu ||
           (event->key() == Qt::Key_F10 && modifiersOf(event) == Qt::ShiftModifier);
}

bool isMoveKey(const QKeyEvent* event) {
    return modifiersOf(event) == Qt::ControlModifier &&
           (event->key() == Qt::Key_Up || event->key() == Qt::Key_Down);
}

bool isRowKey(const QKeyEvent* event) {
    const int key = event->key();
    return modifiersOf(event) == Qt::NoModifier &&
           (isEditKey(key) || key == Qt::Key_Left || key == Qt::Key_Right ||
            key == Qt::Key_Insert || key == Qt::Key_Delete);
}

bool isOwnKey(const QKeyEvent* event) {
    return isMenuKey(event) || isMoveKey(event) || isRowKey(event);
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
    QHash<QBRowKey, int> findRows(const QSet<QBRowKey>& wanted) const;
    void takeKeys();

    void fill();
    void forgetExtraRows();
    void dress(int row, QBNestedListRowWidget* widget);
    void dressAll();
    QRect rowGeometry(int row, const QBNestedListRowWidget* widget) const;

    QBLabel* markedPart(const QBNestedListRowWidget* widget) const;
    void tellRowEvent(int row, QAccessible::Event type);
    void movePart(int step);
    void clickPart();
    void showMark();

    void handleKey(const QKeyEvent* event);
    void askForMenu();
    bool isOwnRow(const QDropEvent* event) const;
    int dropTarget(const QPointF& position) const;
    void showDropLine(int target);
    void endDrop();

    void matchBackground();
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

/// Where the rows of those keys are now.
QHash<QBRowKey, int> QBNestedListTableView::Private::findRows(const QSet<QBRowKey>& wanted) const {
    QHash<QBRowKey, int> rows;
    rows.reserve(wanted.size());
    for (int row = 0; row < count(); ++row) {
        const QBRowKey key = keys[static_cast<std::size_t>(row)];
        if (wanted.contains(key)) rows.insert(key, row);
    }
    return rows;
}

void QBNestedListTableView::Private::takeKeys() {
    const int count = provider->rowCount();
    keys.clear();
    keys.reserve(static_cast<std::size_t>(count));
    for (int row = 0; row < count; ++row)
        keys.push_back(provider->rowKey(row));
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
    // A row that becomes the current one again does not scroll the list.
    q->setAutoScroll(false);
    q->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    q->selectionModel()->setCurrentIndex(index(rows.value(memory.current, -1)),
                                         QItemSelectionModel::NoUpdate);
    q->setAutoScroll(true);
}

void QBNestedListTableView::Private::restoreScroll(const Memory& memory,
                                                   const QHash<QBRowKey, int>& rows) {
    const int top = rows.value(memory.top, -1);
    if (top >= 0) q->verticalScrollBar()->setValue(top * rowHeight() - memory.topY);
}

void QBNestedListTableView::Private::fill() {
    if (isFilling || isRefreshing || provider == nullptr || released || !q->isVisible()) return;
    const QScopedValueRollback<bool> guard(isFilling, true);
    pool.keepOnly([this](int row) { return isShowing(row) || extraRows.count(row) > 0; });
    const int scroll = q->verticalScrollBar()->value();
    const int end = std::min(count(), (scroll + q->viewport()->height() - 1) / rowHeight() + 1);
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

void QBNestedListTableView::Private::tellRowEvent(int row, QAccessible::Event type) {
    if (row < 0 || !QAccessible::isActive()) return;
    // For a screen reader the headers are a line and a column of the table.
    QAccessibleEvent event(q, type);
    event.setChild(2 * (row + 1) + 1);
    QAccessible::updateAccessibility(&event);
}

/// Shows the mark on the current row and tells a screen reader.
void QBNestedListTableView::Private::showMark() {
    QBNestedListRowWidget* widget = q->rowWidget(q->currentRow());
    if (widget == nullptr) return;
    dress(q->currentRow(), widget);
    if (!QAccessible::isActive() || !q->hasFocus()) return;
    if (widget->currentPart() != nullptr) {
        QAccessibleEvent event(widget->currentPart(), QAccessible::Focus);
        return QAccessible::updateAccessibility(&event);
    }
    tellRowEvent(q->currentRow(), QAccessible::Focus);
}

void QBNestedListTableView::Private::clickPart() {
    QBNestedListRowWidget* widget = q->rowWidget(q->currentRow());
    if (widget == nullptr) return;
    q->scrollTo(q->currentIndex());
    QBLabel* part = markedPart(widget);
    if (part == nullptr) part = widget->mainPart();
    if (part != nullptr) part->click();
}

void QBNestedListTableView::Private::handleKey(const QKeyEvent* event) {
    const int forward = q->isRightToLeft() ? -1 : 1;
    if (isMenuKey(event)) return askForMenu();
    if (isEditKey(event->key())) return clickPart();
    switch (event->key()) {
        case Qt::Key_Up:
            return Q_EMIT q->moveUpRequested();
        case Qt::Key_Down:
            return Q_EMIT q->moveDownRequested();
        case Qt::Key_Left:
            return movePart(-forward);
        case Qt::Key_Right:
            return movePart(forward);
        case Qt::Key_Insert:
            return Q_EMIT q->addRequested();
        case Qt::Key_Delete:
            return Q_EMIT q->removeRequested();
    }
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

bool QBNestedListTableView::Private::isOwnRow(const QDropEvent* event) const {
    const bool isFromElsewhere = event->source() != nullptr && event->source() != q;
    return !isFromElsewhere && event->mimeData()->data(rowFormat) == processNumber();
}

int QBNestedListTableView::Private::dropTarget(const QPointF& position) const {
    return q->rowAt(qRound(position.y()) + dropOffset);
}

void QBNestedListTableView::Private::showDropLine(int target) {
    const int row = target < 0 ? count() : target;
    const int y = row * rowHeight() - q->verticalScrollBar()->value();
    dropLine->setGeometry(0, std::max(0, y - 1), q->viewport()->width(), 2);
    dropLine->raise();
    dropLine->show();
}

void QBNestedListTableView::Private::endDrop() {
    q->stopAutoScroll();
    dropLine->hide();
}

// Geometry

/// The area beneath the rows looks like the list.
void QBNestedListTableView::Private::matchBackground() {
    QPalette palette = q->palette();
    if (palette.color(QPalette::Base) == palette.color(QPalette::Window)) return;
    palette.setBrush(QPalette::Window, palette.brush(QPalette::Base));
    q->setPalette(palette);
    q->setAutoFillBackground(true);
}

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
    // A shortcut of the host comes after what the list does with the key.
    if (event->type() == QEvent::ShortcutOverride) {
        auto* key = static_cast<QKeyEvent*>(event);
        if (isOwnKey(key)) return key->accept(), true;
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
    d->dressAll();
}

void QBNestedListTableView::focusOutEvent(QFocusEvent* event) {
    QTableView::focusOutEvent(event);
    // The mark stays where the popup that it opened has come from.
    if (event->reason() != Qt::PopupFocusReason) d->dressAll();
}

void QBNestedListTableView::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    // A dialog around the list would take what is left of Return as its own button.
    if (!isOwnKey(event) && !isReturn) return QTableView::keyPressEvent(event);
    event->accept();
    if (isOwnKey(event)) d->handleKey(event);
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

QMimeData* QBNestedListTableView::newRowMimeData() {
    auto* mime = new QMimeData;
    mime->setData(rowFormat, processNumber());
    return mime;
}

void QBNestedListTableView::startDrag(Qt::DropActions) {
    QBNestedListRowWidget* widget = rowWidget(currentRow());
    if (widget == nullptr) return;
    const std::unique_ptr<QBNestedListRowWidget> picture(widget->clone());
    picture->resize(widget->size());
    d->dragged = shownKey(currentRow());
    auto* drag = new QDrag(this);
    drag->setMimeData(newRowMimeData());
    drag->setPixmap(picture->grab());
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
