#include "rows/identifier_source_row_widget.h"

#include "model/kind_of.h"
#include "rows/row_control.h"
#include "rows/row_texts.h"
#include "ui_identifier_source_row_widget.h"

namespace QB {

using namespace Component::SQL;

QBIdentifierSourceRowWidget::QBIdentifierSourceRowWidget(
    Component::AbstractQueryComponent* component, QBDatabaseInfo info, const std::string& schema,
    QWidget* parent)
    : QBStatementRowWidget(component, info, schema, parent)
    , m_ui(std::make_unique<Ui::QBIdentifierSourceRowWidget>()) {
    m_ui->setupUi(this);
    connectClick(m_ui->identifierLabel, this,
                 &QBIdentifierSourceRowWidget::signalEditIdentifierRequested);
    connectClick(m_ui->aliasLabel, this, &QBIdentifierSourceRowWidget::aliasLabelClicked);
    connectControls(this);
    slotOnComponentChanged();
}

QBIdentifierSourceRowWidget::~QBIdentifierSourceRowWidget() = default;

QBNestedListRowWidget* QBIdentifierSourceRowWidget::clone() {
    auto* twin =
        new QBIdentifierSourceRowWidget(component(), database().info, database().schema, nullptr);
    twin->setInvalidReason(invalidReason());
    copyVisibility(this, twin);
    return twin;
}

void QBIdentifierSourceRowWidget::slotOnComponentChanged() {
    if (!component()) return;
    const auto* source = ifKind<SQLIdentifierSourceComponent>(component());
    const QString name = source ? tableName(source, database()) : QString();
    showRowText(m_ui->identifierLabel, textOrPrompt(name, Tolk::TextPromptTable), invalidReason());
    showRowText(m_ui->aliasLabel, aliasText(source ? source->alias : std::string()));
}

QBLabel* QBIdentifierSourceRowWidget::addRowLabel() {
    return m_ui->addLabel;
}

QBLabel* QBIdentifierSourceRowWidget::addBracketLabel() {
    return m_ui->addBracketLabel;
}

QBLabel* QBIdentifierSourceRowWidget::deleteLabel() {
    return m_ui->deleteLabel;
}

QBLabel* QBIdentifierSourceRowWidget::aliasLabel() {
    return m_ui->aliasLabel;
}

QBLabel* QBIdentifierSourceRowWidget::identifierLabel() const {
    return m_ui->identifierLabel;
}

}  // namespace QB
