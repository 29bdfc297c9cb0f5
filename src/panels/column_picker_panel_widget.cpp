#include "panels/column_picker_panel_widget.h"

#include <QActionGroup>
#include <QMenu>

#include "model/kind_of.h"
#include "platform/tolk/text_ids.h"
#include "platform/tolk/tolk.h"
#include "rows/column_nested_list_row_widget.h"
#include "rows/nested_list_any_expression_row_widget.h"
#include "ui_column_picker_panel_widget.h"

namespace QB {

using namespace Component::SQL;

namespace {

using ExtraData = SQLAbstractColumnComponent::ExtraDataOrderDirection;

OrderDirection nextDirection(OrderDirection direction) {
    struct Step {
        OrderDirection from, to;
    };
    static constexpr Step steps[] = {
        {OrderDirectionNone, OrderDirectionAscending},
        {OrderDirectionAscending, OrderDirectionDescending},
        {OrderDirectionDescending, OrderDirectionNone},
    };
    for (const Step& step : steps) {
        if (step.from == direction) return step.to;
    }
    return OrderDirectionNone;
}

}  // namespace

QBColumnPickerPanelWidget::QBColumnPickerPanelWidget(QWidget* parent)
    : QBColumnListPanelWidget(parent), m_ui(std::make_unique<Ui::QBColumnPickerPanelWidget>()) {
    m_ui->setupUi(this);
    setupColumns(m_ui->tableView, m_ui->moveUpButton, m_ui->moveDownButton);
}

QBColumnPickerPanelWidget::~QBColumnPickerPanelWidget() = default;

QSet<TopLevelQueryComponentElementEnum> QBColumnPickerPanelWidget::relatedElements() const {
    return QBColumnListPanelWidget::relatedElements() << ElementSelectColumn;
}

bool QBColumnPickerPanelWidget::needsCheck(
    void* sender, const QSet<TopLevelQueryComponentElementEnum>& elements) const {
    return elements.contains(ElementSelectColumn) ||
           QBColumnListPanelWidget::needsCheck(sender, elements);
}

// ---- rows -----------------------------------------------------------------------------------

QString QBColumnPickerPanelWidget::promptText() const {
    return Tolk::localize(isOrderBy() ? Tolk::TextNoOrderColumns : Tolk::TextNoGroupColumns);
}

QBNestedListRowWidget* QBColumnPickerPanelWidget::createFieldRow(
    Component::AbstractQueryComponent* component, QWidget* parent) {
    using Row = QBColumnNestedListRowWidget;
    const RowDatabase& database = rowDatabase();
    auto* const row = new Row(component, database.info, database.schema, parent);
    row->setOrderVisible(isOrderBy());
    connectRow<Row, QBColumnListPanelWidget>(row, &Row::identifierLabelClicked, this,
                                             &QBColumnListPanelWidget::slotEditSelectedRowField);
    connectRow(row, &Row::orderLabelClicked, this,
               &QBColumnPickerPanelWidget::slotEditSelectedRowOrder);
    return row;
}

void QBColumnPickerPanelWidget::markFieldRow(QBNestedListRowWidget* widget, const Column&,
                                             int reason) {
    auto* const row = dynamic_cast<QBColumnNestedListRowWidget*>(widget);
    if (!row) return;
    row->setDatabase(rowDatabase().info, rowDatabase().schema);
    row->setOrderVisible(isOrderBy());
    row->setInvalidReason(reason);
}

void QBColumnPickerPanelWidget::setupExpressionRow(QBNestedListAnyExpressionRowWidget* widget) {
    widget->setAliasVisible(false);
    widget->setOrderVisible(isOrderBy());
    connectRow(widget, &QBNestedListAnyExpressionRowWidget::orderLabelClicked, this,
               &QBColumnPickerPanelWidget::slotEditSelectedRowOrder);
}

void QBColumnPickerPanelWidget::retranslate() {
    const char* const clause = isOrderBy() ? "ORDER BY" : "GROUP BY";
    m_ui->tableView->setAccessibleName(Tolk::localizeWithArgs(Tolk::TextColumnsOfClause, clause));
}

// ---- direction ------------------------------------------------------------------------------

OrderDirection QBColumnPickerPanelWidget::directionOf(const Column& column) const {
    const auto* const extra = ifKind<ExtraData>(column.extraData);
    return extra ? extra->direction : OrderDirectionNone;
}

void QBColumnPickerPanelWidget::settleExtraData(Column& column, OrderDirection direction) {
    if (!column.extraData) column.extraData = new ExtraData;
    auto* const extra = dynamic_cast<ExtraData*>(column.extraData);
    if (extra) extra->direction = direction;
}

void QBColumnPickerPanelWidget::slotEditSelectedRowOrder() {
    if (!isOrderBy() || !mayAct()) return;
    const Column* const column = currentColumn();
    if (column) setDirection(rowKey(rowView()->currentRow()), nextDirection(directionOf(*column)));
}

void QBColumnPickerPanelWidget::setDirection(QBRowKey key, OrderDirection direction) {
    if (!mayAct()) return;
    Column* const column = findColumn(key);
    if (!column || directionOf(*column) == direction) return;
    modifyColumns(findRow(key), [&] {
        settleExtraData(*column, direction);
        return true;
    });
}

void QBColumnPickerPanelWidget::addMenuActions(QMenu* menu) {
    const Column* const column = currentColumn();
    if (!isOrderBy() || !column) return;
    const QBRowKey key = rowKey(rowView()->currentRow());
    auto* const group = new QActionGroup(menu);
    const auto add = [&](unsigned text, OrderDirection direction) {
        QAction* const action =
            menu->addAction(Tolk::localize(text), this, [=] { setDirection(key, direction); });
        action->setCheckable(true);
        action->setChecked(directionOf(*column) == direction);
        group->addAction(action);
    };
    menu->addSeparator();
    add(Tolk::TextAscending, OrderDirectionAscending);
    add(Tolk::TextDescending, OrderDirectionDescending);
    add(Tolk::TextNoDirection, OrderDirectionNone);
}

}  // namespace QB
