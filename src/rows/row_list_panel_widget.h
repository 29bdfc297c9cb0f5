#pragma once

#include <QPointer>
#include <functional>
#include <memory>

#include "layouts/components_list_layout.h"
#include "rows/nested_list_table_view.h"
#include "widgets/panel_widget.h"

class QMenu;

namespace QB {

/// The base of the panels that show a clause as a list of rows: keeps rows, view and model in step,
/// guards the user's actions, and finds rows again after a refresh.
///
/// Hosts may deliver notifications at once or later; applyOwnEdit() makes both look the same. A
/// refresh of a panel that is not shown waits until it is.
/// Thread: main.
class QB_EXPORT QBRowListPanelWidget : public QBTopLevelElementPanelWidget,
                                       public IQBNestedListRowProvider {
    Q_OBJECT

public:
    using Item = QBComponentsListLayoutItem;
    using Items = QBComponentsListLayout::Items;

    explicit QBRowListPanelWidget(QWidget* parent = nullptr);
    ~QBRowListPanelWidget() override;

    /// Shows the rows anew, now, also while the panel is hidden. @p rebuildLayout: the model may
    /// have changed under the rows; otherwise they match it and only what they show may differ.
    void refreshUI(bool rebuildLayout);

    QBNestedListTableView* rowView() const { return m_view; }
    const QBComponentsListLayout& rowLayout() const { return m_layout; }

    void relatedElementModified(void* sender,
                                const QSet<TopLevelQueryComponentElementEnum>& elements) override;
    void topLevelQueryComponentLayerChanged(
        Component::AbstractTopLevelQueryComponent* poppedLayer) override;
    void panelBecomeInactive() override;

    int rowCount() const override;
    QBRowKey rowKey(int row) const override;
    void updateRowWidget(QBNestedListRowWidget* widget, int row) override;
    void rowWidgetCreated(QBNestedListRowWidget* widget) override;
    /// The row of that key, -1 if it is not there any more. Linear.
    int findRow(QBRowKey key) const;

public Q_SLOTS:
    // What the user can ask for. All act on the current row or on the selected rows and do nothing
    // unless mayAct(); a panel implements those that its rows offer.
    virtual void slotAddRow() {}
    virtual void slotInsertRow() {}
    virtual void slotAddBracketRow() {}
    virtual void slotInsertBracketRow() {}
    virtual void slotRemoveSelectedRow() {}
    virtual void slotMoveUpSelectedRow() {}
    virtual void slotMoveDownSelectedRow() {}
    virtual void slotEditSelectedRowAlias() {}
    virtual void slotEditSelectedRowNegator() {}
    virtual void slotEditSelectedRowOperator() {}
    /// @p position is in the viewport of the list.
    virtual void showCellContextMenu(const QPoint& position) = 0;

protected:
    /// To be called once, from the constructor of the panel, when its form is set up.
    void setupRows(QBNestedListTableView* view);

    // What a panel says about its rows.

    /// Rows over the clause in the current layer, built; null without a statement.
    virtual std::unique_ptr<QBComponentsListLayout::Impl> createLayout() = 0;
    /// Called before every rebuild and every check, and after a change of layer, to look the clause
    /// up again.
    virtual void renewRoot() {}
    /// Called after every refresh and for every choice of rows, for buttons that depend on them.
    virtual void rowsRefreshed() {}
    /// Marks the row that @p widget has just been made to show.
    virtual void markRow(QBNestedListRowWidget* widget, const Item& item) = 0;
    /// Validates anew and keeps the result; only without an engine or a statement it forgets it.
    virtual void checkInvalidComponents() = 0;
    /// Whether a change of @p elements by @p sender can make something valid or invalid.
    virtual bool needsCheck(void* sender,
                            const QSet<TopLevelQueryComponentElementEnum>& elements) const = 0;
    /// Brings what the panel keeps for each layer to the present number of layers.
    virtual void adjustLayers(int currentLayer) = 0;
    virtual bool isPopupOpen() const = 0;
    /// Closes an open popup or does nothing.
    virtual void cancelPopup() = 0;
    /// The row that the open popup is for; an invalid key: it is for none, and stays open.
    /// The popup is cancelled when that row has gone.
    virtual QBRowKey popupRow() const { return {}; }

    // What a panel does with its rows.

    /// The clause; ElementSource for the condition of a join.
    TopLevelQueryComponentElementEnum element() const;
    /// To edit rows, inside applyOwnEdit().
    QBComponentsListLayout& editableLayout() { return m_layout; }
    /// Null for a row outside the list.
    Item* itemAt(int row) const;
    Item* currentItem() const { return itemAt(m_view->currentRow()); }
    Items selectedItems() const;
    bool isModifying() const { return m_isModifying; }

    /// Whether an action may begin or an answer be taken: there is a statement, no popup is open,
    /// no edit of the panel and no parse runs. Where the model has changed and the panel was not
    /// told yet, the rows are brought up to date first, so look rows up afterwards.
    bool mayAct();

    /// Runs @p edit, which makes its modification with the panel as sender, and shows the result
    /// also where the host notifies later. Who is notified may destroy the panel, the engine or the
    /// statement: @p edit touches none of them after its modification, nor does the caller after
    /// this. @p rowAfter, called when the rows show the result, returns the row to select; -1 or
    /// none: the selection stays with its rows. It is not called if another layer is current then.
    /// Cost beside the edit: one pass over the rows.
    void applyOwnEdit(const std::function<void()>& edit,
                      const std::function<int()>& rowAfter = nullptr);

    /// Makes the row that shows @p widget the current and only selected one. False if none does any
    /// more: a click that came too late.
    bool chooseRowOf(const QWidget* widget);
    /// Lets a click that @p widget tells of choose its row and call @p slot.
    template <typename Row, typename Panel, typename Owner>
    void connectRow(Row* widget, void (Row::*signal)(), Panel* panel, void (Owner::*slot)()) {
        connect(widget, signal, panel, [widget, panel, slot] {
            if (panel->chooseRowOf(widget)) (panel->*slot)();
        });
    }
    /// Validates anew and brings the marks of the rows and the tab up to date.
    void updateMarks();

    /// Shows @p menu at a place of the viewport and returns at once. Its actions see the rows for
    /// which it was opened: it closes when the rows change.
    /// Ownership: the panel's; it goes when it closes.
    void popupMenu(QMenu* menu, const QPoint& position);

    void changeEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void showEvent(QShowEvent* event) override;

private Q_SLOTS:
    void callSlotOfSender();

private:
    class Private;
    friend class Private;
    QBNestedListTableView* m_view = nullptr;  // not owned: a child
    QBComponentsListLayout m_layout;
    bool m_isModifying = false;
    const std::unique_ptr<Private> d;
};

}  // namespace QB
