#include "rows/nested_list_subquery_row_widget.h"

#include <QMouseEvent>

#include "model/element_expressions.h"
#include "model/kind_of.h"
#include "platform/tolk/tolk.h"
#include "rows/row_control.h"
#include "rows/row_texts.h"
#include "tools/validation.h"
#include "ui_nested_list_subquery_row_widget.h"

namespace QB {

using namespace Component::SQL;

namespace {

bool isEmpty(const Component::AbstractTopLevelQueryComponent* statement) {
    const auto* select = ifKind<SQLSelectStmtComponent>(statement);
    return !select || (select->selectColumnExpr->columns.empty() && !select->sourceExpr->root);
}

RowText statementText(const SQLSubquerySourceComponent* source, const RowDatabase& database) {
    const bool hasText = source && !isEmpty(source->subquery);
    return textOrPrompt(hasText ? textInOneLine(source->subquery, database) : QString(),
                        Tolk::TextPromptEmptySubquery);
}

}  // namespace

QBNestedListSubqueryRowWidget::QBNestedListSubqueryRowWidget(
    Component::AbstractQueryComponent* component, QBDatabaseInfo info, const std::string& schema,
    QWidget* parent)
    : QBNestedListRowWidget(component, parent)
    , m_database{info, schema}
    , m_ui(std::make_unique<Ui::QBNestedListSubqueryRowWidget>()) {
    m_ui->setupUi(this);
    m_ui->subqueryContainerWidget->installEventFilter(this);
    connectClick(m_ui->subqueryValueLabel, this,
                 &QBNestedListSubqueryRowWidget::signalJumpToSubqueryRequested);
    connectClick(m_ui->aliasLabel, this, &QBNestedListSubqueryRowWidget::aliasLabelClicked);
    m_ui->addLabel->setKind(QBRowControl::AddRow);
    connectClick(m_ui->addLabel, this, &QBNestedListSubqueryRowWidget::addRowButtonClicked);
    m_ui->addBracketLabel->setKind(QBRowControl::AddBracket);
    connectClick(m_ui->addBracketLabel, this,
                 &QBNestedListSubqueryRowWidget::addBracketButtonClicked);
    m_ui->deleteLabel->setKind(QBRowControl::Delete);
    connectClick(m_ui->deleteLabel, this, &QBNestedListSubqueryRowWidget::deleteButtonClicked);
    slotOnComponentChanged();
}

QBNestedListSubqueryRowWidget::~QBNestedListSubqueryRowWidget() = default;

QBNestedListRowWidget* QBNestedListSubqueryRowWidget::clone() {
    auto* twin =
        new QBNestedListSubqueryRowWidget(component(), m_database.info, m_database.schema, nullptr);
    twin->setInvalidReason(m_invalidReason);
    copyVisibility(this, twin);
    return twin;
}

void QBNestedListSubqueryRowWidget::slotOnComponentChanged() {
    m_ui->subqueryLabel->setText(Tolk::localize(Tolk::TextSubqueryCaption));
    if (!component()) return;
    const auto* source = ifKind<SQLSubquerySourceComponent>(component());
    showRowText(m_ui->subqueryValueLabel, statementText(source, m_database), m_invalidReason);
    const std::string alias = source ? source->alias : std::string();
    // The prompt is marked too where the alias is what is missing.
    const bool isFaultHere = m_invalidReason == Tools::Validation::InvalidUnnamedSubquery;
    showRowText(m_ui->aliasLabel, aliasText(alias),
                isFaultHere && alias.empty() ? m_invalidReason : -1);
}

void QBNestedListSubqueryRowWidget::setDatabase(QBDatabaseInfo info, const std::string& schema) {
    const RowDatabase database{info, schema};
    if (database == m_database) return;
    m_database = database;
    slotOnComponentChanged();
}

void QBNestedListSubqueryRowWidget::setInvalidReason(int reason) {
    if (m_invalidReason == reason) return;
    m_invalidReason = reason;
    slotOnComponentChanged();
}

/// A click beside the label, on the caption, is one on the container.
bool QBNestedListSubqueryRowWidget::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonRelease) {
        const auto* release = static_cast<QMouseEvent*>(event);
        const QWidget* container = m_ui->subqueryContainerWidget;
        const bool isInside = container->rect().contains(release->pos());
        const bool isOnLabel = m_ui->subqueryValueLabel->geometry().contains(release->pos());
        if (release->button() == Qt::LeftButton && isInside && !isOnLabel)
            Q_EMIT signalJumpToSubqueryRequested();
    }
    return QBNestedListRowWidget::eventFilter(watched, event);
}

void QBNestedListSubqueryRowWidget::resizeEvent(QResizeEvent* event) {
    showCaptionIfRoom(m_ui->subqueryLabel, this);
    QBNestedListRowWidget::resizeEvent(event);
}

QBLabel* QBNestedListSubqueryRowWidget::addRowLabel() {
    return m_ui->addLabel;
}

QBLabel* QBNestedListSubqueryRowWidget::addBracketLabel() {
    return m_ui->addBracketLabel;
}

QBLabel* QBNestedListSubqueryRowWidget::deleteLabel() {
    return m_ui->deleteLabel;
}

QBLabel* QBNestedListSubqueryRowWidget::aliasLabel() {
    return m_ui->aliasLabel;
}

QBLabel* QBNestedListSubqueryRowWidget::valueLabel() const {
    return m_ui->subqueryValueLabel;
}

}  // namespace QB
