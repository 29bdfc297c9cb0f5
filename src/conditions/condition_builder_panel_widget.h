#pragma once

#include <QList>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "conditions/condition_side.h"
#include "conditions/condition_values.h"
#include "model/detached_parts.h"
#include "model/element_expressions.h"
#include "popups/column_choice.h"
#include "popups/column_choice_host.h"
#include "popups/panel_popup.h"
#include "rows/row_database.h"
#include "rows/row_list_panel_widget.h"
#include "tools/validation.h"
#include "widgets/condition_operators.h"
#include "widgets/invalid_excluder.h"
#include "widgets/per_layer.h"

namespace Ui {
class QBConditionBuilderPanelWidget;
}

namespace QB {

class QBRowMoveButtons;

/// Edits one chain of conditions as a list of rows: that of the WHERE clause, of the HAVING clause,
/// or the ON condition of one join.
///
/// For a clause: setRelatedElements(), setEngine(). For a join: setJoin(), setEngine(), and
/// setRelatedComponents() to offer and accept only the sources that the join can see. The join is
/// looked up by its id in the FROM clause of the current layer at each change; rootLost() tells
/// when it has gone.
/// Thread: main.
class QB_EXPORT QBConditionBuilderPanelWidget : public QBRowListPanelWidget,
                                                public IQBColumnChoiceHost,
                                                public IQBInvalidExcluder {
    Q_OBJECT

public:
    using Column = Component::SQL::SQLAbstractColumnComponent;
    using Condition = Component::SQL::SQLAbstractConditionComponent;
    using Source = Component::SQL::SQLAbstractSourceComponent;
    using Join = Component::SQL::SQLJoinSourceNodeComponent;

    /// @p root is null, or the address of the condition of a join, which names that join as
    /// setJoin() does; it is compared, and never looked into.
    explicit QBConditionBuilderPanelWidget(Condition** root, QWidget* parent = nullptr);
    ~QBConditionBuilderPanelWidget() override;

    /// Edits the ON condition of @p join, which stands in the FROM clause of the layer that is
    /// current; sets the related elements, too.
    void setJoin(const Join* join);
    /// Takes ElementWhere or ElementHaving; ElementSource for the condition of a join.
    void setRelatedElements(const QSet<TopLevelQueryComponentElementEnum>& elements) override;
    /// Also ElementSource: what the conditions name stands there.
    QSet<TopLevelQueryComponentElementEnum> relatedElements() const override;
    /// The sources whose fields the popups offer; those that have left the FROM clause are skipped.
    /// Without this call all sources of the statement are offered.
    void setRelatedComponents(const QList<Source*>& sources);
    /// A frame around the list, for a panel in a popup.
    void setBordered(bool isBordered);

    /// The slot of the chain in the current layer; null without a statement, or where the join has
    /// gone. Valid until the next modification.
    Condition** rootComponentRef() const { return m_root; }
    /// The WHERE or HAVING element of the current statement; null for another clause or without a
    /// statement.
    ELEMSQLConditionExpr* obtainRepresentedExpression() const;
    /// Looks the slot of the chain up where it is not known.
    void setupRootComponentRef();

    /// Adds a comparison, or with @p bareValue a value that is a condition by itself: before the
    /// current row, or at the end of its group. Its missing values stay unmarked until the panel
    /// becomes inactive or the layer changes, since a row that was just begun is no fault. Does
    /// nothing without a current row.
    void addValueComponent(bool insertBefore, bool bareValue);
    void addBracketComponent(bool insertBefore);
    /// Gives the condition in @p row, if that is @p condition, an operator: an operator turns a
    /// value that is a condition by itself into a comparison with it on the left, and CompareOpNone
    /// turns a comparison into its left value. Gate and negation stay with the condition.
    void performEditCompareOperator(Condition* condition, int operatorValue, int row);

    /// Validates anew and marks the result; never inside another check.
    void checkInvalidComponents() override;
    bool hasInvalidComponents() const override;
    /// Leaves a value unmarked until the panel becomes inactive or the layer changes. @p slot holds
    /// the value, or is the place of a missing one; ignored if it is not in this chain.
    void excludeInvalidComponent(Condition** slot) override;
    void panelBecomeInactive() override;

    QBColumnChoice columnChoice() const override { return QBColumnChoice::Fields; }
    std::vector<Source*> choiceSources() const override;

    int rowKind(int row) const override;
    QBNestedListRowWidget* createRowWidget(int row, QWidget* parent) override;

public Q_SLOTS:
    void slotAddRow() override;
    void slotInsertRow() override;
    void slotAddBracketRow() override;
    void slotInsertBracketRow() override;
    void slotRemoveSelectedRow() override;
    void slotMoveUpSelectedRow() override;
    void slotMoveDownSelectedRow() override;
    void slotEditSelectedRowOperator() override;
    void slotEditSelectedRowNegator() override;
    void slotEditSelectedRowLeftValue();
    void slotEditSelectedRowRightValue();
    void slotEditSelectedRowCompareOperator();
    void showCellContextMenu(const QPoint& position) override;

Q_SIGNALS:
    /// The join whose condition the panel edits is no longer in the current FROM clause: the popup
    /// around the panel closes as cancelled. Once; the panel shows no rows then.
    void rootLost();

protected:
    std::unique_ptr<QBComponentsListLayout::Impl> createLayout() override;
    void renewRoot() override;
    void rowsRefreshed() override;
    void markRow(QBNestedListRowWidget* widget, const Item& item) override;
    bool needsCheck(void* sender,
                    const QSet<TopLevelQueryComponentElementEnum>& elements) const override;
    void adjustLayers(int currentLayer) override;
    bool isPopupOpen() const override { return m_popup.isOpen(); }
    void cancelPopup() override { m_popup.cancel(); }
    QBRowKey popupRow() const override { return m_popupRow; }
    void changeEvent(QEvent* event) override;

private:
    using Slot = Condition**;
    using Value = Component::SQL::SQLConditionValueComponent;
    using Compare = Component::SQL::SQLCompareConditionComponent;

    // The chain.
    Slot findRoot();
    Slot findRootOfJoin();
    void renewExclusion();
    int shownReason(Slot slot) const;
    Slot slotOf(const Item& item) const;

    // Rows.
    enum RowKind { DummyRow, ConditionRow, OpenRow, CloseRow };
    QBRowKey currentKey() const;
    Condition* conditionIn(const Item* item) const;
    /// The first and the last row of what @p row shows: of a whole bracket for its rows.
    std::pair<int, int> spanOf(int row) const;
    std::vector<QBRowKey> selectedKeys() const;
    Items itemsOf(const std::vector<QBRowKey>& keys) const;
    void retranslate();

    // Edits, each one modification. They find their rows again by key.
    void modify(const std::function<bool(DetachedParts&)>& change);
    void editCondition(QBRowKey key, const std::function<bool(Condition*)>& change);
    void addCondition(std::unique_ptr<Condition> condition, bool insertBefore);
    void moveRow(QBRowKey key, const std::function<int(int)>& targetOf);
    void group(const std::vector<QBRowKey>& keys);
    void ungroup(const std::vector<QBRowKey>& keys);
    void chooseOperator(QBRowKey key, int compareOp);
    void replaceOperator(Compare* compare, CompareOp compareOp);
    void replaceByValue(Item* item, Compare* compare);
    void replaceByCompare(Item* item, Value* value, CompareOp compareOp);
    void moveExclusion(QBConditionSide from, QBConditionSide to);
    void fillOperatorMenu(QMenu* menu, QBRowKey key);

    // Values and their popups.
    struct Operand {
        Condition* component;  ///< null if it is missing
        ConditionOperand kind;
    };
    std::optional<Operand> operandAt(QBConditionSide side) const;
    Condition* conditionOf(QBConditionSide side) const;
    Value* ensureValue(QBConditionSide side, DetachedParts& removed);
    void editValue(QBConditionSide side, const std::function<void(Value*, DetachedParts&)>& write);
    void editSide(QBConditionSide::Side which);
    void popupForEditValueComponent(QBConditionSide side, QWidget* anchor, bool preferExpression);
    void popupForEditValueComponentExpressionsInBetweenOp(QBConditionSide side, QWidget* anchor);
    void popupForEditValueComponentExpressionsInInListOp(QBConditionSide side, QWidget* anchor);
    std::unique_ptr<Column> obtainComponentFromColumnSelectionPopupInput(
        const QBChosenColumn& chosen) const;
    std::string asOnePiece(QBConditionSide side, const std::string& text) const;
    void applyChosen(QBConditionSide side, QBChosenColumn chosen);
    void applyRange(QBConditionSide side, ConditionValues::Range range);
    void applyList(QBConditionSide side, const std::string& text);

    const std::unique_ptr<Ui::QBConditionBuilderPanelWidget> m_ui;
    QBRowMoveButtons* m_moveButtons = nullptr;  // not owned: a child
    Slot m_givenRoot;                           // not owned: compared until the join is known
    Slot m_root = nullptr;  // not owned: part of the model, see rootComponentRef()
    long m_joinId = -1;     // -1: none, or not known yet
    bool m_isJoinLost = false;
    bool m_hasRelatedSources = false;
    std::set<long> m_relatedSources;  // ids
    PerLayer<Tools::Validation::InvalidConditions> m_invalidComponentsPerLayer;
    std::set<QBConditionSide> m_excluded;
    std::set<Slot> m_excludedSlots;  // where m_excluded stands; compared only
    RowDatabase m_database;          // what the texts of the rows depend on
    bool m_isChecking = false;
    QBRowKey m_popupRow;
    QBPanelPopup m_popup;  // last, so that it goes before what its answers use
};

}  // namespace QB
