#include "rows/nested_list_table_view_item_delegate.h"

#include "rows/nested_list_table_view.h"
#include "widgets/label_palette.h"

namespace QB {

void QBNestedListTableViewItemDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                              const QModelIndex& index) const {
    auto* view = qobject_cast<const QBNestedListTableView*>(option.widget);
    if (view != nullptr && index.isValid()) view->placeRow(index.row());
    QStyledItemDelegate::paint(painter, option, index);
}

void QBNestedListTableViewItemDelegate::initStyleOption(QStyleOptionViewItem* option,
                                                        const QModelIndex& index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    option->palette.setColor(QPalette::Highlight, selectedRowColour(option->palette));
    option->palette.setColor(QPalette::HighlightedText, option->palette.color(QPalette::Text));
}

}  // namespace QB
