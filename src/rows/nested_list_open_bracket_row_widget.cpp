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
    m_ui->negatorLabel->hide();
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
    const auto* condition = ifKind<SQLBracketedConditionComponent>(component());
    const bool isNegated = condition && condition->negated;
    showRowText(m_ui->negatorLabel, {Tolk::localize(Tolk::TextNotWord),
                                     isNegated ? LabelColour::Operator : LabelColour::Placeholder,
                                     Tolk::localize(Tolk::TextNegateCondition)});
}

QBLabel* QBNestedListOpenBracketRowWidget::deleteLabel() {
    return m_ui->deleteLabel;
}

QBLabel* QBNestedListOpenBracketRowWidget::negatorLabel() {
    return m_ui->negatorLabel;
}

QBLabel* QBNestedListOpenBracketRowWidget::mainPart() const {
    return m_ui->negatorLabel->isHidden() ? nullptr : m_ui->negatorLabel;
}

}  // namespace QB
