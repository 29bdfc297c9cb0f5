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
    : QBStatementRowWidget(component, info, schema, parent)
    , m_ui(std::make_unique<Ui::QBColumnPanelFieldRowWidget>()) {
    m_ui->setupUi(this);
    connectClick(m_ui->fieldLabel, this, &QBColumnPanelFieldRowWidget::identifierLabelClicked);
    connectClick(m_ui->aliasLabel, this, &QBColumnPanelFieldRowWidget::aliasLabelClicked);
    connectControls(this);
    slotOnComponentChanged();
}

QBColumnPanelFieldRowWidget::~QBColumnPanelFieldRowWidget() = default;

QBNestedListRowWidget* QBColumnPanelFieldRowWidget::clone() {
    auto* twin =
        new QBColumnPanelFieldRowWidget(component(), database().info, database().schema, nullptr);
    twin->setInvalidReason(invalidReason());
    copyVisibility(this, twin);
    return twin;
}

void QBColumnPanelFieldRowWidget::slotOnComponentChanged() {
    if (!component()) return;
    const auto* column = ifKind<SQLAbstractColumnComponent>(component());
    const std::string alias = column ? column->alias : std::string();
    RowText text = columnText(column, database());
    if (!alias.empty())
        text.toolTip = text.text + QStringLiteral(" - ") + QString::fromStdString(alias);
    showRowText(m_ui->fieldLabel, text, invalidReason());
    showRowText(m_ui->aliasLabel, aliasText(alias));
    m_ui->aliasLabel->setVisible(m_isAliasWanted && !isWildcard(column));
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
