#include "rows/column_panel_field_row_widget.h"

#include "model/kind_of.h"
#include "rows/row_control.h"
#include "rows/row_texts.h"
#include "ui_column_panel_field_row_widget.h"

namespace QB {

using namespace Component::SQL;

namespace {

/// Stands for several columns; COUNT(*) is one.
bool isWildcard(const SQLAbstractColumnComponent* column) {
    const auto* field = ifKind<SQLFieldColumnComponent>(column);
    return field && field->isAsterisk && field->aggregateFunction.empty();
}

}  // namespace

QBColumnPanelFieldRowWidget::QBColumnPanelFieldRowWidget(
    Component::AbstractQueryComponent* component, QBDatabaseInfo info, const std::string& schema,
    QWidget* parent)
    : QBNestedListRowWidget(component, parent)
    , m_database{info, schema}
    , m_ui(std::make_unique<Ui::QBColumnPanelFieldRowWidget>()) {
    m_ui->setupUi(this);
    connectClick(m_ui->fieldLabel, this, &QBColumnPanelFieldRowWidget::identifierLabelClicked);
    connectClick(m_ui->aliasLabel, this, &QBColumnPanelFieldRowWidget::aliasLabelClicked);
    m_ui->addLabel->setKind(QBRowControl::AddRow);
    connectClick(m_ui->addLabel, this, &QBColumnPanelFieldRowWidget::addRowButtonClicked);
    m_ui->deleteLabel->setKind(QBRowControl::Delete);
    connectClick(m_ui->deleteLabel, this, &QBColumnPanelFieldRowWidget::deleteButtonClicked);
    slotOnComponentChanged();
}

QBColumnPanelFieldRowWidget::~QBColumnPanelFieldRowWidget() = default;

QBNestedListRowWidget* QBColumnPanelFieldRowWidget::clone() {
    auto* twin =
        new QBColumnPanelFieldRowWidget(component(), m_database.info, m_database.schema, nullptr);
    twin->setInvalidReason(m_invalidReason);
    copyVisibility(this, twin);
    return twin;
}

void QBColumnPanelFieldRowWidget::slotOnComponentChanged() {
    if (!component()) return;
    const auto* column = ifKind<SQLAbstractColumnComponent>(component());
    const std::string alias = column ? column->alias : std::string();
    RowText text = columnText(column, m_database);
    if (!alias.empty())
        text.toolTip = text.text + QStringLiteral(" - ") + QString::fromStdString(alias);
    showRowText(m_ui->fieldLabel, text, m_invalidReason);
    showRowText(m_ui->aliasLabel, aliasText(alias));
    m_ui->aliasLabel->setVisible(m_isAliasWanted && !isWildcard(column));
}

void QBColumnPanelFieldRowWidget::setDatabase(QBDatabaseInfo info, const std::string& schema) {
    const RowDatabase database{info, schema};
    if (database == m_database) return;
    m_database = database;
    slotOnComponentChanged();
}

void QBColumnPanelFieldRowWidget::setInvalidReason(int reason) {
    if (m_invalidReason == reason) return;
    m_invalidReason = reason;
    slotOnComponentChanged();
}

void QBColumnPanelFieldRowWidget::setAliasVisible(bool isVisible) {
    m_isAliasWanted = isVisible;
    m_ui->aliasLabel->setVisible(isVisible &&
                                 !isWildcard(ifKind<SQLAbstractColumnComponent>(component())));
}

QBLabel* QBColumnPanelFieldRowWidget::addRowLabel() {
    return m_ui->addLabel;
}

QBLabel* QBColumnPanelFieldRowWidget::deleteLabel() {
    return m_ui->deleteLabel;
}

QBLabel* QBColumnPanelFieldRowWidget::aliasLabel() {
    return m_ui->aliasLabel;
}

QBLabel* QBColumnPanelFieldRowWidget::fieldLabel() const {
    return m_ui->fieldLabel;
}

}  // namespace QB
