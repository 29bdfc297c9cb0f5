#include "frame/clause_tabs.h"

#include "conditions/condition_builder_panel_widget.h"
#include "conditions/row_selection_limit_panel_widget.h"
#include "panels/column_picker_panel_widget.h"
#include "panels/source_column_selection_panel_widget.h"
#include "panels/source_selection_panel_widget.h"

namespace QB {
namespace {

constexpr int firstSQLServerWithLimit = 11000000;
constexpr int firstOracleWithLimit = 120100;

bool hasRowLimit(QBDatabaseInfo info) {
    if (info.databaseType == DatabaseTypeSQLServer)
        return info.databaseVersion >= firstSQLServerWithLimit;
    if (info.databaseType == DatabaseTypeOracle)
        return info.databaseVersion >= firstOracleWithLimit;
    return true;
}

template <typename Panel>
QBTopLevelElementPanelWidget* make(QWidget* parent) {
    return new Panel(parent);
}

/// It finds the clause by its related element.
QBTopLevelElementPanelWidget* makeConditions(QWidget* parent) {
    return new QBConditionBuilderPanelWidget(nullptr, parent);
}

}  // namespace

std::vector<ClauseTab> allClauseTabs() {
    return {
        {"SELECT", ElementSelectColumn, make<QBSourceColumnSelectionPanelWidget>},
        {"FROM", ElementSource, make<QBSourceSelectionPanelWidget>},
        {"WHERE", ElementWhere, makeConditions},
        {"GROUP BY", ElementGroupBy, make<QBColumnPickerPanelWidget>},
        {"HAVING", ElementHaving, makeConditions},
        {"ORDER BY", ElementOrderBy, make<QBColumnPickerPanelWidget>},
        {"LIMIT", ElementLimit, make<QBRowSelectionLimitPanelWidget>},
    };
}

bool hasClause(QBDatabaseInfo info, TopLevelQueryComponentElementEnum element) {
    if (!hasStatementModel(info.databaseType)) return false;
    return element != ElementLimit || hasRowLimit(info);
}

}  // namespace QB
