#pragma once

#include <memory>
#include <string>

#include "conditions/condition_side.h"
#include "rows/nested_list_row_widget.h"
#include "rows/row_database.h"
#include "rows/row_interfaces.h"

namespace Ui {
class QBConditionNestedListRowWidget;
}

namespace QB {

namespace Component::SQL {
class SQLCompareConditionComponent;
}

/// One condition in one line: NOT, the left value, the operator, the right value, and the logic
/// word towards the next condition.
/// Component: SQLCompareConditionComponent, or SQLConditionValueComponent for a value that is a
/// condition by itself.
class QBConditionNestedListRowWidget : public QBNestedListRowWidget,
                                       public IQBNestedListRowWidgetAddRowSupported,
                                       public IQBNestedListRowWidgetAddBracketSupported,
                                       public IQBNestedListRowWidgetDeleteSupported,
                                       public IQBNestedListRowWidgetNegateSupported,
                                       public IQBNestedListRowWidgetEditLogicGateSupported {
    Q_OBJECT

public:
    /// @p schema is the one that names may leave out; see schemaLeftOut().
    QBConditionNestedListRowWidget(Component::AbstractQueryComponent* component,
                                   QBDatabaseInfo info, const std::string& schema, QWidget* parent);
    ~QBConditionNestedListRowWidget() override;

    QBNestedListRowWidget* clone() override;
    void slotOnComponentChanged() override;

    /// The server and the schema that may be left out.
    void setDatabase(QBDatabaseInfo info, const std::string& schema);

    /// Why a value is marked, one of Tools::Validation::InvalidReason; -1: it is not.
    void setLeftInvalidReason(int reason);
    int leftInvalidReason() const { return m_leftInvalidReason; }
    void setRightInvalidReason(int reason);
    int rightInvalidReason() const { return m_rightInvalidReason; }

    QBLabel* valueLabel(QBConditionSide::Side side) const;
    QBLabel* operatorLabel() const;
    /// The first value that is missing, else the left one.
    QBLabel* mainPart() const override;

    QBLabel* addRowLabel() override;
    QBLabel* addBracketLabel() override;
    QBLabel* deleteLabel() override;
    QBLabel* negatorLabel() override;
    QBLabel* logicGateLabel() override;

Q_SIGNALS:
    void leftValueLabelClicked();
    void operatorLabelClicked();
    void rightValueLabelClicked();
    void addRowButtonClicked();
    void addBracketButtonClicked();
    void deleteButtonClicked();
    void negateToggleTriggered();
    void logicGateLabelClicked();

protected:
    /// A row that is not negated shows its NOT, dimmed, while one can reach for it.
    void showLitControls() override;

private:
    void connectLabels();
    void showNegator();
    void showCompare(const Component::SQL::SQLCompareConditionComponent* compare);
    void showGate();
    void showValue(QBConditionSide::Side side, const std::string& text);

    RowDatabase m_database;
    int m_leftInvalidReason = -1;
    int m_rightInvalidReason = -1;
    bool m_isLeftMissing = false;
    bool m_isRightMissing = false;
    const std::unique_ptr<Ui::QBConditionNestedListRowWidget> m_ui;
};

}  // namespace QB
