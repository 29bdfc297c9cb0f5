#include "stringifier/dialects.h"

namespace QB {

using namespace Component;
using namespace Component::SQL;

namespace {

bool isSet(std::int32_t rows) {
    return rows != -1;
}

bool isUnlimited(const ELEMSQLLimitExpr* limit) {
    return !isSet(limit->offset) && !isSet(limit->rowCount);
}

bool isUnordered(const SQLSelectStmtComponent* statement) {
    return statement->orderByExpr->columns.empty();
}

/// ASCII letters alone: the option is a keyword, whatever the process's locale.
std::string upperCase(std::string text) {
    for (char& c : text) {
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    }
    return text;
}

/// What servers that limit ordered rows alone are given where the statement has no order.
void appendFirstOrder(StringifiedNode& node, int level) {
    node.appendLine({}, level);
    node.append("ORDER BY 1");
}

bool hasWrittenCondition(const SQLJoinSourceNodeComponent* join) {
    return join->needsCondition() && join->hasCondition();
}

/// A line of a number of rows between two texts.
void appendRows(StringifiedNode& node, int level, std::string_view before, std::int32_t rows,
                std::string_view after = {}) {
    node.appendLine({}, level);
    node.append(before);
    node.appendNumber(rows);
    node.append(after);
}

/// MySQL's form, on one line: LIMIT count, or LIMIT offset, count.
void appendCommaLimit(StringifiedNode& node, int level, const ELEMSQLLimitExpr* limit) {
    if (isUnlimited(limit)) return;
    if (!isSet(limit->offset)) return appendRows(node, level, "LIMIT ", limit->rowCount);
    appendRows(node, level, "LIMIT ", limit->offset, ", ");
    // An offset needs a count; the largest one stands for none.
    if (isSet(limit->rowCount)) return node.appendNumber(limit->rowCount);
    node.append("18446744073709551615/* 2^64-1 */");
}

}  // namespace

StringifiedNode QBQueryComponentStringifier_MYSQL::stringifyExpr_ELEMSQLLimitExpr(
    const SQLSelectStmtComponent*, const ELEMSQLLimitExpr* limit, int level,
    TopLevelQueryComponentElementEnum) {
    StringifiedNode node = newNode();
    appendCommaLimit(node, level, limit);
    return node;
}

StringifiedNode QBQueryComponentStringifier_MARIADB::stringifyExpr_ELEMSQLLimitExpr(
    const SQLSelectStmtComponent*, const ELEMSQLLimitExpr* limit, int level,
    TopLevelQueryComponentElementEnum) {
    StringifiedNode node = newNode();
    appendCommaLimit(node, level, limit);
    return node;
}

StringifiedNode QBQueryComponentStringifier_PGSQL::stringifyExpr_ELEMSQLLimitExpr(
    const SQLSelectStmtComponent*, const ELEMSQLLimitExpr* limit, int level,
    TopLevelQueryComponentElementEnum) {
    StringifiedNode node = newNode();
    if (isSet(limit->rowCount)) appendRows(node, level, "LIMIT ", limit->rowCount);
    if (isSet(limit->offset)) appendRows(node, level, "OFFSET ", limit->offset);
    return node;
}

StringifiedNode QBQueryComponentStringifier_SQLITE::stringifyExpr_ELEMSQLLimitExpr(
    const SQLSelectStmtComponent*, const ELEMSQLLimitExpr* limit, int level,
    TopLevelQueryComponentElementEnum) {
    StringifiedNode node = newNode();
    if (isUnlimited(limit)) return node;
    // A count of -1 means all rows here, which is how the model marks it as not set.
    appendRows(node, level, "LIMIT ", limit->rowCount);
    if (isSet(limit->offset)) appendRows(node, level, "OFFSET ", limit->offset);
    return node;
}

bool QBQueryComponentStringifier_MYSQL::readsNestedJoin(
    const SQLJoinSourceNodeComponent* nested) const {
    return hasWrittenCondition(nested);
}

bool QBQueryComponentStringifier_MARIADB::readsNestedJoin(
    const SQLJoinSourceNodeComponent* nested) const {
    return hasWrittenCondition(nested);
}

bool QBQueryComponentStringifier_SQLITE::readsNestedJoin(const SQLJoinSourceNodeComponent*) const {
    return false;
}

StringifiedNode QBQueryComponentStringifier_MSSQL::stringifyExpr_ELEMSQLLimitExpr(
    const SQLSelectStmtComponent* statement, const ELEMSQLLimitExpr* limit, int level,
    TopLevelQueryComponentElementEnum) {
    StringifiedNode node = newNode();
    if (isUnlimited(limit)) return node;
    if (isUnordered(statement)) appendFirstOrder(node, level);
    const std::int32_t offset = isSet(limit->offset) ? limit->offset : 0;
    appendRows(node, level, "OFFSET ", offset, " ROWS");
    if (isSet(limit->rowCount))
        appendRows(node, level, "FETCH NEXT ", limit->rowCount, " ROWS ONLY");
    return node;
}

bool QBQueryComponentStringifier_MSSQL::keepsTableSchema() const {
    return true;
}

StringifiedNode QBQueryComponentStringifier_ORA::stringifyExpr_ELEMSQLLimitExpr(
    const SQLSelectStmtComponent* statement, const ELEMSQLLimitExpr* limit, int level,
    TopLevelQueryComponentElementEnum) {
    StringifiedNode node = newNode();
    if (isUnlimited(limit)) return node;
    const std::string option = upperCase(limit->returnOption);
    if (option == "WITH TIES" && isUnordered(statement)) appendFirstOrder(node, level);
    if (isSet(limit->offset)) appendRows(node, level, "OFFSET ", limit->offset, " ROWS");
    if (isSet(limit->rowCount)) {
        appendRows(node, level, isSet(limit->offset) ? "FETCH NEXT " : "FETCH FIRST ",
                   limit->rowCount, limit->isPercent ? " PERCENT ROWS " : " ROWS ");
        node.appendCopy(option);
    }
    return node;
}

std::string_view QBQueryComponentStringifier_ORA::sourceAliasSeparator() const {
    return " ";
}

StringifiedNode QBQueryComponentStringifier_MONGODB::stringifyComponent(
    const AbstractQueryComponent*, int, const SourceChildCallback&) {
    return {};
}

}  // namespace QB
