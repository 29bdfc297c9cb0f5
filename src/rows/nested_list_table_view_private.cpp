#include "rows/nested_list_table_view_private.h"

#include <QDropEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <algorithm>

#include "widgets/label.h"

namespace QB {
namespace {

constexpr int leastRowHeight = 23;
constexpr int roomAboutText = 6;
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

}  // namespace

QBNestedListTableView::Private::Private(QBNestedListTableView* owner)
    : q(owner)
    , model(new RowModel(owner))
    , bottom(new QHBoxLayout(owner))
    , pool(owner->viewport())
    , dropLine(new DropLine(owner->viewport())) {}

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

bool QBNestedListTableView::Private::isOwnKey(const QKeyEvent* event) {
    return isMenuKey(event) || isMoveKey(event) || isRowKey(event);
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

QMimeData* QBNestedListTableView::newRowMimeData() {
    auto* mime = new QMimeData;
    mime->setData(rowFormat, processNumber());
    return mime;
}

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

}  // namespace QB
