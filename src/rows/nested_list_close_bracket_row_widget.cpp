#include "rows/nested_list_close_bracket_row_widget.h"

#include "model/kind_of.h"
#include "rows/nested_list_open_bracket_row_widget.h"
#include "rows/row_control.h"
#include "rows/row_texts.h"
#include "ui_nested_list_close_bracket_row_widget.h"

namespace QB {

using namespace Component::SQL;

QBNestedListCloseBracketRowWidget::QBNestedListCloseBracketRowWidget(
    const QBNestedListOpenBracketRowWidget* openRow, QWidget* parent)
    : QBNestedListRowWidget(openRow ? openRow->component() : nullptr, parent)
    , m_ui(std::make_unique<Ui::QBNestedListCloseBracketRowWidget>()) {
    m_ui->setupUi(this);
    connectClick(m_ui->logicalLabel, this,
                 &QBNestedListCloseBracketRowWidget::logicGateLabelClicked);
    connectControls(this);
    slotOnComponentChanged();
}

QBNestedListCloseBracketRowWidget::~QBNestedListCloseBracketRowWidget() = default;

QBNestedListRowWidget* QBNestedListCloseBracketRowWidget::clone() {
    auto* twin = new QBNestedListCloseBracketRowWidget(nullptr, nullptr);
    twin->setComponent(component());
    copyVisibility(this, twin);
    return twin;
}

void QBNestedListCloseBracketRowWidget::slotOnComponentChanged() {
    const auto* sources = ifKind<SQLBracketedSourceNodeComponent>(component());
    const bool isNamed = sources && !sources->alias.empty();
    showRowText(
        m_ui->closeBracketLabel,
        {isNamed ? QStringLiteral(") ") + aliasText(sources->alias).text : QStringLiteral(")")});
    const auto* bracket = ifKind<SQLBracketedConditionComponent>(component());
    const SQLAbstractConditionComponent* next = bracket ? bracket->next : nullptr;
    m_ui->logicalLabel->setVisible(next);
    if (next) showRowText(m_ui->logicalLabel, logicGateText(next->logicGate));
}

QBLabel* QBNestedListCloseBracketRowWidget::addRowLabel() {
    return m_ui->addLabel;
}

QBLabel* QBNestedListCloseBracketRowWidget::addBracketLabel() {
    return m_ui->addBracketLabel;
}

QBLabel* QBNestedListCloseBracketRowWidget::deleteLabel() {
    return m_ui->deleteLabel;
}

QBLabel* QBNestedListCloseBracketRowWidget::logicGateLabel() {
    return m_ui->logicalLabel;
}

QBLabel* QBNestedListCloseBracketRowWidget::mainPart() const {
    return m_ui->logicalLabel->isHidden() ? nullptr : m_ui->logicalLabel;
}

}  // namespace QB
