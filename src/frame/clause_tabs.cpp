#include "frame/clause_tabs.h"

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

}  // namespace

std::vector<ClauseTab> allClauseTabs() {
    return {
        {"SELECT", ElementSelectColumn, {}}, {"FROM", ElementSource, {}},
        {"WHERE", ElementWhere, {}},         {"GROUP BY", ElementGroupBy, {}},
        {"HAVING", ElementHaving, {}},       {"ORDER BY", ElementOrderBy, {}},
        {"LIMIT", ElementLimit, {}},
    };
}

bool hasClause(QBDatabaseInfo info, TopLevelQueryComponentElementEnum element) {
    if (!hasStatementModel(info.databaseType)) return false;
    return element != ElementLimit || hasRowLimit(info);
}

}  // namespace QB
