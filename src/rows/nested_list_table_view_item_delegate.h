#pragma once

#include <QStyledItemDelegate>

namespace QB {

/// Paints what lies under a row: the background of the whole line, in which a selected row is only
/// a quarter as strong as elsewhere, so that coloured texts stay readable on it.
class QBNestedListTableViewItemDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    /// Puts the row's widget in its place first.
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;

private:
    static void paintFocusFrame(QPainter* painter, const QStyleOptionViewItem& option);
};

}  // namespace QB
