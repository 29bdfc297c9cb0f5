#include "rows/column_nested_list_row_widget.h"

#include "model/kind_of.h"
#include "rows/row_control.h"
#include "rows/row_texts.h"
#include "ui_column_nested_list_row_widget.h"

namespace QB {

using namespace Component::SQL;

QBColumnNestedListRowWidget::QBColumnNestedListRowWidget(
    Component::AbstractQueryComponent* component, QBDatabaseInfo info, const std::string& schema,
    QWidget* parent)
    : QBStatementRowWidget(component, info, schema, parent)
    , m_ui(std::make_unique<Ui::QBColumnNestedListRowWidget>()) {
    m_ui->setupUi(this);
    connectClick(m_ui->identifierLabel, this, &QBColumnNestedListRowWidget::identifierLabelClicked);
    connectClick(m_ui->orderLabel, this, &QBColumnNestedListRowWidget::orderLabelClicked);
    connectControls(this);
    slotOnComponentChanged();
}

QBColumnNestedListRowWidget::~QBColumnNestedListRowWidget() = default;

QBNestedListRowWidget* QBColumnNestedListRowWidget::clone() {
    auto* twin =
        new QBColumnNestedListRowWidget(component(), database().info, database().schema, nullptr);
    twin->setInvalidReason(invalidReason());
    copyVisibility(this, twin);
    return twin;
}

void QBColumnNestedListRowWidget::slotOnComponentChanged() {
    if (!component()) return;
    const auto* column = ifKind<SQLAbstractColumnComponent>(component());
    RowText text = columnText(column, database());
    if (column && !column->alias.empty())
        text.text += QLatin1Char(' ') + aliasText(column->alias).text;
    showRowText(m_ui->identifierLabel, text, invalidReason());
    showRowText(m_ui->orderLabel, directionText(column));
}

void QBColumnNestedListRowWidget::setOrderVisible(bool isVisible) {
    m_ui->orderLabel->setVisible(isVisible);
}

QBLabel* QBColumnNestedListRowWidget::addRowLabel() {
    return m_ui->addLabel;
}

QBLabel* QBColumnNestedListRowWidget::deleteLabel() {
    return m_ui->deleteLabel;
}

QBLabel* QBColumnNestedListRowWidget::identifierLabel() const {
    return m_ui->identifierLabel;
}

QBLabel* QBColumnNestedListRowWidget::orderLabel() const {
    return m_ui->orderLabel;
}

}  // namespace QB
