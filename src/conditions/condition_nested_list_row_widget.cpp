#include "conditions/condition_nested_list_row_widget.h"

#include <QSignalBlocker>
#include <algorithm>

#include "conditions/condition_values.h"
#include "platform/tolk/tolk.h"
#include "rows/row_control.h"
#include "rows/row_texts.h"
#include "ui_condition_nested_list_row_widget.h"
#include "widgets/condition_operators.h"

namespace QB {

using namespace Component::SQL;
using Compare = SQLCompareConditionComponent;
using Value = SQLConditionValueComponent;

/// In logical pixels; a sign or a short word stays whole in a narrow row.
constexpr int leastOperatorWidth = 40;

QBConditionNestedListRowWidget::QBConditionNestedListRowWidget(
    Component::AbstractQueryComponent* component, QBDatabaseInfo info, const std::string& schema,
    QWidget* parent)
    : QBNestedListRowWidget(component, parent)
    , m_database{info, schema}
    , m_ui(std::make_unique<Ui::QBConditionNestedListRowWidget>()) {
    m_ui->setupUi(this);
    // Short words stay whole where the row is narrow; values elide.
    for (QBLabel* label : {m_ui->negatorLabel, m_ui->logicalLabel})
        label->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
    connectControls(this);
    connectLabels();
    slotOnComponentChanged();
}

QBConditionNestedListRowWidget::~QBConditionNestedListRowWidget() = default;

void QBConditionNestedListRowWidget::connectLabels() {
    using Row = QBConditionNestedListRowWidget;
    connectClick(m_ui->leftValueLabel, this, &Row::leftValueLabelClicked);
    connectClick(m_ui->operatorLabel, this, &Row::operatorLabelClicked);
    connectClick(m_ui->rightValueLabel, this, &Row::rightValueLabelClicked);
    connectClick(m_ui->negatorLabel, this, &Row::negateToggleTriggered);
    connectClick(m_ui->logicalLabel, this, &Row::logicGateLabelClicked);
}

QBNestedListRowWidget* QBConditionNestedListRowWidget::clone() {
    auto* twin = new QBConditionNestedListRowWidget(component(), m_database.info, m_database.schema,
                                                    nullptr);
    twin->setIndentLevel(indentLevel());
    twin->setLeftInvalidReason(m_leftInvalidReason);
    twin->setRightInvalidReason(m_rightInvalidReason);
    copyVisibility(this, twin);
    return twin;
}

void QBConditionNestedListRowWidget::setDatabase(QBDatabaseInfo info, const std::string& schema) {
    const RowDatabase database{info, schema};
    if (database == m_database) return;
    m_database = database;
    slotOnComponentChanged();
}

void QBConditionNestedListRowWidget::setLeftInvalidReason(int reason) {
    if (m_leftInvalidReason == reason) return;
    m_leftInvalidReason = reason;
    slotOnComponentChanged();
}

void QBConditionNestedListRowWidget::setRightInvalidReason(int reason) {
    if (m_rightInvalidReason == reason) return;
    m_rightInvalidReason = reason;
    slotOnComponentChanged();
}

void QBConditionNestedListRowWidget::slotOnComponentChanged() {
    if (!component()) return;
    {
        const QSignalBlocker quiet(this);
        const auto* compare = dynamic_cast<const Compare*>(component());
        const auto* value = dynamic_cast<const Value*>(component());
        showNegator();
        m_ui->leftValueLabel->setVisible(compare || value);
        if (compare) showCompare(compare);
        if (value) {
            showValue(QBConditionSide::Left, ConditionValues::valueText(value, m_database));
            showRowText(m_ui->operatorLabel,
                        {promptText(Tolk::TextPromptOperator), LabelColour::Placeholder});
        }
        m_ui->operatorLabel->setVisible(compare);
        m_ui->rightValueLabel->setVisible(compare &&
                                          operandOf(compare->compareOp) != ConditionOperand::None);
        showGate();
    }
    Q_EMIT accessibleTextChanged();
}

void QBConditionNestedListRowWidget::showNegator() {
    const auto* condition = dynamic_cast<const SQLAbstractConditionComponent*>(component());
    showNegation(m_ui->negatorLabel, m_ui->horizontalLayout, m_ui->logicalLabel,
                 condition && condition->negated, condition && areControlsLit());
}

void QBConditionNestedListRowWidget::showCompare(const Compare* compare) {
    using ConditionValues::operandText;
    showValue(QBConditionSide::Left, operandText(compare->leftValue, 1, m_database));
    const bool isOperator = compare->compareOp != CompareOpNone;
    showRowText(m_ui->operatorLabel,
                {operatorText(compare->compareOp),
                 isOperator ? LabelColour::Operator : LabelColour::Placeholder});
    const int width = m_ui->operatorLabel->sizeHint().width();
    m_ui->operatorLabel->setMinimumWidth(std::min(width, leastOperatorWidth));
    const int listMode = listModeOf(compare->compareOp);
    showValue(QBConditionSide::Right, operandText(compare->rightValue, listMode, m_database));
}

void QBConditionNestedListRowWidget::showGate() {
    const auto* condition = dynamic_cast<const SQLAbstractConditionComponent*>(component());
    const bool isLinked = condition && condition->next;
    if (isLinked) showRowText(m_ui->logicalLabel, logicGateText(condition->next->logicGate));
    m_ui->logicalLabel->setVisible(isLinked);
}

void QBConditionNestedListRowWidget::showValue(QBConditionSide::Side side,
                                               const std::string& text) {
    const bool isLeft = side == QBConditionSide::Left;
    (isLeft ? m_isLeftMissing : m_isRightMissing) = text.empty();
    showRowText(valueLabel(side), textOrPrompt(oneLine(text), Tolk::TextPromptValue),
                isLeft ? m_leftInvalidReason : m_rightInvalidReason);
}

void QBConditionNestedListRowWidget::showLitControls() {
    showNegator();
}

QBLabel* QBConditionNestedListRowWidget::valueLabel(QBConditionSide::Side side) const {
    return side == QBConditionSide::Left ? m_ui->leftValueLabel : m_ui->rightValueLabel;
}

QBLabel* QBConditionNestedListRowWidget::operatorLabel() const {
    return m_ui->operatorLabel;
}

QBLabel* QBConditionNestedListRowWidget::mainPart() const {
    const bool hasRight = !m_ui->rightValueLabel->isHidden();
    const bool wantsRight = hasRight && m_isRightMissing && !m_isLeftMissing;
    return wantsRight ? m_ui->rightValueLabel : m_ui->leftValueLabel;
}

QBLabel* QBConditionNestedListRowWidget::addRowLabel() {
    return m_ui->addLabel;
}

QBLabel* QBConditionNestedListRowWidget::addBracketLabel() {
    return m_ui->addBracketLabel;
}

QBLabel* QBConditionNestedListRowWidget::deleteLabel() {
    return m_ui->deleteLabel;
}

QBLabel* QBConditionNestedListRowWidget::negatorLabel() {
    return m_ui->negatorLabel;
}

QBLabel* QBConditionNestedListRowWidget::logicGateLabel() {
    return m_ui->logicalLabel;
}

}  // namespace QB
