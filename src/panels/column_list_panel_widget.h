#pragma once

#include <set>

#include "popups/column_choice.h"
#include "popups/column_choice_host.h"
#include "popups/panel_popup.h"
#include "rows/row_database.h"
#include "rows/row_list_panel_widget.h"
#include "tools/validation.h"
#include "widgets/per_layer.h"

class QAbstractButton;

namespace QB {

class QBColumnSelectionPopupWidget;
class QBNestedListAnyExpressionRowWidget;
class QBRowMoveButtons;

/// What the panels of SELECT, GROUP BY and ORDER BY share: a flat list of columns that are added,
/// edited, removed and moved.
///
/// Every edit is one modification with the panel as its sender. A chooser holds ids only: its
/// answer goes to the column and the statement that it was opened for, or nowhere.
/// Thread: main.
class QB_EXPORT QBColumnListPanelWidget : public QBRowListPanelWidget, public IQBColumnChoiceHost {
    Q_OBJECT

public:
    using Column = Component::SQL::SQLAbstractColumnComponent;

    explicit QBColumnListPanelWidget(QWidget* parent = nullptr);
    ~QBColumnListPanelWidget() override;

    /// As refreshUI().
    void refreshUi(bool rebuildLayout) { refreshUI(rebuildLayout); }

    /// The panel's clause, and the sources, which its columns name.
    QSet<TopLevelQueryComponentElementEnum> relatedElements() const override;
    void setRelatedElements(const QSet<TopLevelQueryComponentElementEnum>& elements) override;
    bool hasInvalidComponents() const override;

    /// All leaves of the FROM clause.
    std::vector<Component::SQL::SQLAbstractSourceComponent*> choiceSources() const override;

    int rowKind(int row) const override;
    QBNestedListRowWidget* createRowWidget(int row, QWidget* parent) override;

public Q_SLOTS:
    /// Opens the chooser for a column behind the last one.
    void slotAddRow() override { addComponent(false); }
    /// Opens the chooser for a column before the current one.
    void slotInsertRow() override { addComponent(true); }
    void slotRemoveSelectedRow() override;
    void slotMoveUpSelectedRow() override;
    void slotMoveDownSelectedRow() override;
    /// Opens the chooser for the current row.
    void slotEditSelectedRowField();
    void showCellContextMenu(const QPoint& position) override;

protected:
    enum RowKind { NoWidgetRow = -1, PlaceholderRow, FieldRow, ExpressionRow };

    /// To be called once, from the constructor of the panel, when its form is set up.
    void setupColumns(QBNestedListTableView* view, QAbstractButton* moveUpButton,
                      QAbstractButton* moveDownButton);

    // What the panels differ in.

    /// What an empty list says.
    virtual QString promptText() const = 0;
    /// A row for a field column, its own signals connected.
    virtual QBNestedListRowWidget* createFieldRow(Component::AbstractQueryComponent* component,
                                                  QWidget* parent) = 0;
    virtual void markFieldRow(QBNestedListRowWidget* widget, const Column& column, int reason) = 0;
    /// Shows of an expression's row what this clause has, and connects it.
    virtual void setupExpressionRow(QBNestedListAnyExpressionRowWidget* widget) = 0;
    virtual void setupChooser(QBColumnSelectionPopupWidget*) {}
    /// What the clause keeps with each of its columns; inside a block, or for a column not linked
    /// yet.
    virtual void settleExtraData(Column&, OrderDirection) {}
    virtual OrderDirection directionOf(const Column&) const { return OrderDirectionNone; }
    virtual void addMenuActions(QMenu*) {}
    /// Names the list for screen readers.
    virtual void retranslate() = 0;

    // What they do alike.

    /// The statement of the current layer; null if there is none.
    Component::SQL::SQLSelectStmtComponent* statement() const;
    const RowDatabase& rowDatabase() const { return m_rowDatabase; }
    /// Null for a row outside the list and for the placeholder.
    Column* columnAt(int row) const;
    Column* currentColumn() const;
    /// The column of the row of that key; null if it has gone.
    Column* findColumn(QBRowKey key) const { return columnAt(findRow(key)); }

    /// Runs @p edit in one modification of the clause, as an edit of this panel; @p edit returns
    /// whether it changed anything. @p row is selected then; -1: the selection stays.
    void modifyColumns(int row, const std::function<bool()>& edit);

    /// The popup of the panel is for the row of @p key from now on; an invalid key: for none.
    void setPopupRow(QBRowKey key) { m_popupRow = key; }
    QBPanelPopup& panelPopup() { return m_popup; }

    std::unique_ptr<QBComponentsListLayout::Impl> createLayout() override;
    void renewRoot() override;
    void markRow(QBNestedListRowWidget* widget, const Item& item) override;
    void checkInvalidComponents() override;
    bool needsCheck(void* sender,
                    const QSet<TopLevelQueryComponentElementEnum>& elements) const override;
    void adjustLayers(int currentLayer) override;
    bool isPopupOpen() const override { return m_popup.isOpen(); }
    void cancelPopup() override { m_popup.cancel(); }
    QBRowKey popupRow() const override { return m_popupRow; }

    void rowsRefreshed() override;
    void changeEvent(QEvent* event) override;

private:
    using Answer = std::function<void(const QBChosenColumn&)>;

    std::vector<Column*>* columns() const;
    int invalidReason(const Column* column) const;

    void addComponent(bool insert);
    /// @p edited is null when adding.
    void openChooser(QWidget* anchor, Column* edited, const Answer& answer);
    void insertColumn(const QBChosenColumn& chosen, QBRowKey before, long statementId);
    void editColumn(QBRowKey key, const QBChosenColumn& chosen);
    void replaceColumn(Item* item, std::unique_ptr<Column> replacement);
    static Column* obtainSuitableComponent(Column* component, int tab);

    void moveComponent(int row, int target);
    void moveCurrentRow(int offset);
    void dropCurrentRow(int target);
    void keepLostReferences(Tools::Validation::InvalidColumns& found);

    PerLayer<Tools::Validation::InvalidColumns> m_invalidComponentsPerLayer;
    /// The ids of columns whose column of the SELECT list has gone.
    PerLayer<std::set<long>> m_lostReferencesPerLayer;
    RowDatabase m_rowDatabase;
    QBRowKey m_popupRow;
    QBRowMoveButtons* m_moveButtons = nullptr;  // not owned: a child
    QBPanelPopup m_popup{this};                 // last, so that it goes first
};

}  // namespace QB
