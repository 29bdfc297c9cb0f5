#include "rows/nested_list_any_expression_row_widget.h"

#include "model/kind_of.h"
#include "platform/tolk/tolk.h"
#include "rows/row_control.h"
#include "rows/row_texts.h"
#include "ui_nested_list_any_expression_row_widget.h"

namespace QB {

using namespace Component::SQL;

namespace {

std::string expressionOf(const Component::AbstractQueryComponent* component) {
    if (const auto* source = ifKind<SQLAnyExpressionSourceComponent>(component))
        return source->expression;
    const auto* column = ifKind<SQLAnyExpressionColumnComponent>(component);
    return column ? column->expression : std::string();
}

std::string aliasOf(const Component::AbstractQueryComponent* component) {
    if (const auto* source = ifKind<SQLAbstractSourceComponent>(component)) return source->alias;
    const auto* column = ifKind<SQLAbstractColumnComponent>(component);
    return column ? column->alias : std::string();
}

}  // namespace

QBNestedListAnyExpressionRowWidget::QBNestedListAnyExpressionRowWidget(
    Component::AbstractQueryComponent* component, QWidget* parent)
    : QBStatementRowWidget(component, {}, {}, parent)
    , m_ui(std::make_unique<Ui::QBNestedListAnyExpressionRowWidget>()) {
    m_ui->setupUi(this);
    m_ui->orderLabel->hide();
    connectClick(m_ui->expressionValueLabel, this,
                 &QBNestedListAnyExpressionRowWidget::valueLabelClicked);
    connectClick(m_ui->aliasLabel, this, &QBNestedListAnyExpressionRowWidget::aliasLabelClicked);
    connectClick(m_ui->orderLabel, this, &QBNestedListAnyExpressionRowWidget::orderLabelClicked);
    connectControls(this);
    slotOnComponentChanged();
}

QBNestedListAnyExpressionRowWidget::~QBNestedListAnyExpressionRowWidget() = default;

QBNestedListRowWidget* QBNestedListAnyExpressionRowWidget::clone() {
    auto* twin = new QBNestedListAnyExpressionRowWidget(component(), nullptr);
    twin->setInvalidReason(invalidReason());
    copyVisibility(this, twin);
    return twin;
}

void QBNestedListAnyExpressionRowWidget::slotOnComponentChanged() {
    m_ui->expressionLabel->setText(Tolk::localize(Tolk::TextExpressionCaption));
    if (!component()) return;
    const auto* column = ifKind<SQLAbstractColumnComponent>(component());
    const QString expression = oneLine(expressionOf(component()));
    showRowText(m_ui->expressionValueLabel, textOrPrompt(expression, Tolk::TextPromptExpression),
                invalidReason());
    showRowText(m_ui->aliasLabel, aliasText(aliasOf(component())));
    showRowText(m_ui->orderLabel, directionText(column));
}

void QBNestedListAnyExpressionRowWidget::setOrderVisible(bool isVisible) {
    m_ui->orderLabel->setVisible(isVisible);
}

void QBNestedListAnyExpressionRowWidget::resizeEvent(QResizeEvent* event) {
    showCaptionIfRoom(m_ui->expressionLabel, this);
    QBStatementRowWidget::resizeEvent(event);
}

QBLabel* QBNestedListAnyExpressionRowWidget::addRowLabel() {
    return m_ui->addLabel;
}

QBLabel* QBNestedListAnyExpressionRowWidget::addBracketLabel() {
    return m_ui->addBracketLabel;
}

QBLabel* QBNestedListAnyExpressionRowWidget::deleteLabel() {
    return m_ui->deleteLabel;
}

QBLabel* QBNestedListAnyExpressionRowWidget::aliasLabel() {
    return m_ui->aliasLabel;
}

QBLabel* QBNestedListAnyExpressionRowWidget::valueLabel() const {
    return m_ui->expressionValueLabel;
}

QBLabel* QBNestedListAnyExpressionRowWidget::orderLabel() const {
    return m_ui->orderLabel;
}

}  // namespace QB
