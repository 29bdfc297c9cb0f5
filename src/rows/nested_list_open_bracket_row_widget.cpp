#include "rows/nested_list_open_bracket_row_widget.h"

#include "model/kind_of.h"
#include "platform/tolk/tolk.h"
#include "rows/row_control.h"
#include "rows/row_texts.h"
#include "ui_nested_list_open_bracket_row_widget.h"

namespace QB {

using namespace Component::SQL;

QBNestedListOpenBracketRowWidget::QBNestedListOpenBracketRowWidget(
    Component::AbstractQueryComponent* component, QWidget* parent)
    : QBNestedListRowWidget(component, parent)
    , m_ui(std::make_unique<Ui::QBNestedListOpenBracketRowWidget>()) {
    m_ui->setupUi(this);
    connectClick(m_ui->negatorLabel, this,
                 &QBNestedListOpenBracketRowWidget::negateToggleTriggered);
    connectControls(this);
    slotOnComponentChanged();
}

QBNestedListOpenBracketRowWidget::~QBNestedListOpenBracketRowWidget() = default;

QBNestedListRowWidget* QBNestedListOpenBracketRowWidget::clone() {
    auto* twin = new QBNestedListOpenBracketRowWidget(component(), nullptr);
    copyVisibility(this, twin);
    return twin;
}

void QBNestedListOpenBracketRowWidget::slotOnComponentChanged() {
    m_ui->openBracketLabel->setText(QStringLiteral("("));
    showNegator();
}

void QBNestedListOpenBracketRowWidget::showLitControls() {
    showNegator();
}

void QBNestedListOpenBracketRowWidget::showNegator() {
    const auto* condition = ifKind<SQLBracketedConditionComponent>(component());
    showNegation(m_ui->negatorLabel, m_ui->horizontalLayout, m_ui->openBracketLabel,
                 condition && condition->negated, condition && areControlsLit());
}

QBLabel* QBNestedListOpenBracketRowWidget::deleteLabel() {
    return m_ui->deleteLabel;
}

QBLabel* QBNestedListOpenBracketRowWidget::negatorLabel() {
    return m_ui->negatorLabel;
}

QBLabel* QBNestedListOpenBracketRowWidget::mainPart() const {
    const bool isNegated = m_ui->negatorLabel->colour() == LabelColour::Operator;
    return isNegated ? m_ui->negatorLabel : nullptr;
}

}  // namespace QB
