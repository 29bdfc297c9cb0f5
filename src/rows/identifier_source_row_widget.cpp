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
    : QBNestedListRowWidget(component, parent)
    , m_database{info, schema}
    , m_ui(std::make_unique<Ui::QBIdentifierSourceRowWidget>()) {
    m_ui->setupUi(this);
    connectClick(m_ui->identifierLabel, this,
                 &QBIdentifierSourceRowWidget::signalEditIdentifierRequested);
    connectClick(m_ui->aliasLabel, this, &QBIdentifierSourceRowWidget::aliasLabelClicked);
    m_ui->addLabel->setKind(QBRowControl::AddRow);
    connectClick(m_ui->addLabel, this, &QBIdentifierSourceRowWidget::addRowButtonClicked);
    m_ui->addBracketLabel->setKind(QBRowControl::AddBracket);
    connectClick(m_ui->addBracketLabel, this,
                 &QBIdentifierSourceRowWidget::addBracketButtonClicked);
    m_ui->deleteLabel->setKind(QBRowControl::Delete);
    connectClick(m_ui->deleteLabel, this, &QBIdentifierSourceRowWidget::deleteButtonClicked);
    slotOnComponentChanged();
}

QBIdentifierSourceRowWidget::~QBIdentifierSourceRowWidget() = default;

QBNestedListRowWidget* QBIdentifierSourceRowWidget::clone() {
    auto* twin =
        new QBIdentifierSourceRowWidget(component(), m_database.info, m_database.schema, nullptr);
    copyVisibility(this, twin);
    return twin;
}

void QBIdentifierSourceRowWidget::slotOnComponentChanged() {
    if (!component()) return;
    const auto* source = ifKind<SQLIdentifierSourceComponent>(component());
    const QString name = source ? tableName(source, m_database) : QString();
    showRowText(m_ui->identifierLabel, textOrPrompt(name, Tolk::TextPromptTable));
    showRowText(m_ui->aliasLabel, aliasText(source ? source->alias : std::string()));
}

void QBIdentifierSourceRowWidget::setDatabase(QBDatabaseInfo info, const std::string& schema) {
    const RowDatabase database{info, schema};
    if (database == m_database) return;
    m_database = database;
    slotOnComponentChanged();
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
