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
    : QBStatementRowWidget(component, info, schema, parent)
    , m_ui(std::make_unique<Ui::QBNestedListSubqueryRowWidget>()) {
    m_ui->setupUi(this);
    m_ui->subqueryContainerWidget->installEventFilter(this);
    connectClick(m_ui->subqueryValueLabel, this,
                 &QBNestedListSubqueryRowWidget::signalJumpToSubqueryRequested);
    connectClick(m_ui->aliasLabel, this, &QBNestedListSubqueryRowWidget::aliasLabelClicked);
    connectControls(this);
    slotOnComponentChanged();
}

QBNestedListSubqueryRowWidget::~QBNestedListSubqueryRowWidget() = default;

QBNestedListRowWidget* QBNestedListSubqueryRowWidget::clone() {
    auto* twin =
        new QBNestedListSubqueryRowWidget(component(), database().info, database().schema, nullptr);
    twin->setInvalidReason(invalidReason());
    copyVisibility(this, twin);
    return twin;
}

void QBNestedListSubqueryRowWidget::slotOnComponentChanged() {
    m_ui->subqueryLabel->setText(Tolk::localize(Tolk::TextSubqueryCaption));
    if (!component()) return;
    const auto* source = ifKind<SQLSubquerySourceComponent>(component());
    showRowText(m_ui->subqueryValueLabel, statementText(source, database()), invalidReason());
    const std::string alias = source ? source->alias : std::string();
    // The prompt is marked too where the alias is what is missing.
    const bool isFaultHere = invalidReason() == Tools::Validation::InvalidUnnamedSubquery;
    showRowText(m_ui->aliasLabel, aliasText(alias),
                isFaultHere && alias.empty() ? invalidReason() : -1);
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
    return QBStatementRowWidget::eventFilter(watched, event);
}

void QBNestedListSubqueryRowWidget::resizeEvent(QResizeEvent* event) {
    showCaptionIfRoom(m_ui->subqueryLabel, this);
    QBStatementRowWidget::resizeEvent(event);
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
