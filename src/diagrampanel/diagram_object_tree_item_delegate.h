#pragma once

#include <QStyledItemDelegate>

namespace QB {

class QBDiagramObjectTreePanelWidget;

/// Paints the rows of the object tree: the row of the current schema in bold, a row that loads in
/// italics with a word that says so, in the colours of the view's palette. A name that does not fit
/// shows whole in a tooltip.
class QBDiagramObjectTreeItemDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    /// @p panel owns the delegate and the tree.
    explicit QBDiagramObjectTreeItemDelegate(QBDiagramObjectTreePanelWidget* panel);
    ~QBDiagramObjectTreeItemDelegate() override;

    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;

private:
    bool isCurrentSchema(const QModelIndex& index) const;

    const QBDiagramObjectTreePanelWidget* const m_panel;  // not owned: it owns the delegate
};

}  // namespace QB
