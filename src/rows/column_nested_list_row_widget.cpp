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
    : QBNestedListRowWidget(component, parent)
    , m_database{info, schema}
    , m_ui(std::make_unique<Ui::QBColumnNestedListRowWidget>()) {
    m_ui->setupUi(this);
    connectClick(m_ui->identifierLabel, this, &QBColumnNestedListRowWidget::identifierLabelClicked);
    connectClick(m_ui->orderLabel, this, &QBColumnNestedListRowWidget::orderLabelClicked);
    m_ui->addLabel->setKind(QBRowControl::AddRow);
    connectClick(m_ui->addLabel, this, &QBColumnNestedListRowWidget::addRowButtonClicked);
    m_ui->deleteLabel->setKind(QBRowControl::Delete);
    connectClick(m_ui->deleteLabel, this, &QBColumnNestedListRowWidget::deleteButtonClicked);
    slotOnComponentChanged();
}

QBColumnNestedListRowWidget::~QBColumnNestedListRowWidget() = default;

QBNestedListRowWidget* QBColumnNestedListRowWidget::clone() {
    auto* twin =
        new QBColumnNestedListRowWidget(component(), m_database.info, m_database.schema, nullptr);
    twin->setInvalidReason(m_invalidReason);
    copyVisibility(this, twin);
    return twin;
}

void QBColumnNestedListRowWidget::slotOnComponentChanged() {
    if (!component()) return;
    const auto* column = ifKind<SQLAbstractColumnComponent>(component());
    RowText text = columnText(column, m_database);
    if (column && !column->alias.empty())
        text.text += QLatin1Char(' ') + aliasText(column->alias).text;
    showRowText(m_ui->identifierLabel, text, m_invalidReason);
    showRowText(m_ui->orderLabel, directionText(column));
}

void QBColumnNestedListRowWidget::setDatabase(QBDatabaseInfo info, const std::string& schema) {
    const RowDatabase database{info, schema};
    if (database == m_database) return;
    m_database = database;
    slotOnComponentChanged();
}

void QBColumnNestedListRowWidget::setInvalidReason(int reason) {
    if (m_invalidReason == reason) return;
    m_invalidReason = reason;
    slotOnComponentChanged();
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
