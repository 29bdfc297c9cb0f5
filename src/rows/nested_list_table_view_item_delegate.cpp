#include "rows/nested_list_table_view_item_delegate.h"

#include <QPainter>

#include "rows/nested_list_table_view.h"
#include "widgets/label_palette.h"

namespace QB {

void QBNestedListTableViewItemDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                              const QModelIndex& index) const {
    auto* view = qobject_cast<const QBNestedListTableView*>(option.widget);
    if (view != nullptr && index.isValid()) view->placeRow(index.row());
    QStyledItemDelegate::paint(painter, option, index);
    if (option.state & QStyle::State_HasFocus) paintFocusFrame(painter, option);
}

void QBNestedListTableViewItemDelegate::paintFocusFrame(QPainter* painter,
                                                        const QStyleOptionViewItem& option) {
    painter->save();
    painter->setPen(option.palette.color(QPalette::Highlight));
    painter->drawRect(option.rect.adjusted(0, 0, -1, -1));
    painter->restore();
}

void QBNestedListTableViewItemDelegate::initStyleOption(QStyleOptionViewItem* option,
                                                        const QModelIndex& index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    // A style may tint the whole line for the focus, and the texts on it would be harder to read.
    option->state &= ~QStyle::State_HasFocus;
    option->palette.setColor(QPalette::Highlight, selectedRowColour(option->palette));
    option->palette.setColor(QPalette::HighlightedText, option->palette.color(QPalette::Text));
}

}  // namespace QB
