#include "rows/source_selection_join_row_widget.h"

#include "model/kind_of.h"
#include "platform/tolk/tolk.h"
#include "rows/invalid_reason.h"
#include "rows/row_control.h"
#include "rows/row_texts.h"
#include "ui_source_selection_join_row_widget.h"
#include "widgets/join_words.h"

namespace QB {

using namespace Component::SQL;

namespace {

/// The column list of USING, which is kept as one free text.
QString usingColumns(const SQLAbstractConditionComponent* condition) {
    const auto* value = ifKind<SQLConditionValueComponent>(condition);
    const auto* columns =
        value ? ifKind<SQLAnyExpressionColumnComponent>(value->firstValue()) : nullptr;
    return columns ? oneLine(columns->expression) : QString();
}

/// A prompt that says that it is to be clicked.
RowText openPrompt(Tolk::TextId id) {
    return {QLatin1Char('<') + Tolk::localize(id) + QStringLiteral("...>"),
            LabelColour::Placeholder};
}

RowText conditionText(const SQLJoinSourceNodeComponent* join, const RowDatabase& database) {
    if (join && join->isUsing) {
        const QString columns = usingColumns(join->condition);
        if (columns.isEmpty()) return openPrompt(Tolk::TextPromptUsingColumns);
        return {QStringLiteral("USING: ") + columns};
    }
    if (!join || !join->hasCondition()) return openPrompt(Tolk::TextPromptCondition);
    const QString text = textInOneLine(join->condition, database);
    return {QLatin1Char('[') + text + QLatin1Char(']')};
}

}  // namespace

QBSourceSelectionJoinRowWidget::QBSourceSelectionJoinRowWidget(
    Component::AbstractQueryComponent* component, QBDatabaseInfo info, const std::string& schema,
    QWidget* parent)
    : QBStatementRowWidget(component, info, schema, parent)
    , m_ui(std::make_unique<Ui::QBSourceSelectionJoinRowWidget>()) {
    m_ui->setupUi(this);
    connectClick(m_ui->joinLabel, this,
                 &QBSourceSelectionJoinRowWidget::signalEditJoinTypeRequested);
    connectClick(m_ui->conditionLabel, this,
                 &QBSourceSelectionJoinRowWidget::signalEditConditionRequested);
    connectControls(this);
    slotOnComponentChanged();
}

QBSourceSelectionJoinRowWidget::~QBSourceSelectionJoinRowWidget() = default;

QBNestedListRowWidget* QBSourceSelectionJoinRowWidget::clone() {
    auto* twin = new QBSourceSelectionJoinRowWidget(component(), database().info, database().schema,
                                                    nullptr);
    twin->setInvalidReason(invalidReason());
    twin->setConditionFault(m_conditionFault);
    copyVisibility(this, twin);
    return twin;
}

void QBSourceSelectionJoinRowWidget::slotOnComponentChanged() {
    if (!component()) return;
    const auto* join = ifKind<SQLJoinSourceNodeComponent>(component());
    const QString word = join ? joinWord(join) : QString();
    showRowText(m_ui->joinLabel, textOrPrompt(word, Tolk::TextPromptJoinType));
    const bool takesCondition = !join || join->needsCondition();
    const bool isKept = join && join->joinType == SQLJoinTypeCross && join->hasCondition();
    m_ui->conditionLabel->setVisible(takesCondition || isKept);
    if (isKept) return showKeptCondition(join);
    if (!takesCondition) return;
    const QString fault =
        m_conditionFault.isEmpty() ? invalidReasonText(invalidReason()) : m_conditionFault;
    showRowText(m_ui->conditionLabel, conditionText(join, database()), fault);
}

/// What was written before the join became one without condition.
void QBSourceSelectionJoinRowWidget::showKeptCondition(const SQLJoinSourceNodeComponent* join) {
    RowText kept = conditionText(join, database());
    kept.colour = LabelColour::Placeholder;
    kept.toolTip = Tolk::localize(Tolk::TextJoinTakesNoCondition);
    showRowText(m_ui->conditionLabel, kept);
}

void QBSourceSelectionJoinRowWidget::setConditionFault(const QString& fault) {
    if (fault == m_conditionFault) return;
    m_conditionFault = fault;
    slotOnComponentChanged();
}

QBLabel* QBSourceSelectionJoinRowWidget::deleteLabel() {
    return m_ui->deleteLabel;
}

QBLabel* QBSourceSelectionJoinRowWidget::joinLabel() const {
    return m_ui->joinLabel;
}

QBLabel* QBSourceSelectionJoinRowWidget::conditionLabel() const {
    return m_ui->conditionLabel;
}

}  // namespace QB
