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

/// MySQL's form, on one line: LIMIT count, or LIMIT offset, count.
StringifiedNode commaLimit(const ELEMSQLLimitExpr* limit, const std::string& newline) {
    if (isUnlimited(limit)) return {};
    std::string line = newline + "LIMIT ";
    if (isSet(limit->offset)) line += std::to_string(limit->offset) + ", ";
    // An offset needs a count; the largest one stands for none.
    line += isSet(limit->rowCount) ? std::to_string(limit->rowCount)
                                   : "18446744073709551615/* 2^64-1 */";
    return StringifiedNode(line);
}

}  // namespace

StringifiedNode QBQueryComponentStringifier_MYSQL::stringifyExpr_ELEMSQLLimitExpr(
    const SQLSelectStmtComponent*, const ELEMSQLLimitExpr* limit, int level,
    TopLevelQueryComponentElementEnum) {
    return commaLimit(limit, newlineIndent(level));
}

StringifiedNode QBQueryComponentStringifier_MARIADB::stringifyExpr_ELEMSQLLimitExpr(
    const SQLSelectStmtComponent*, const ELEMSQLLimitExpr* limit, int level,
    TopLevelQueryComponentElementEnum) {
    return commaLimit(limit, newlineIndent(level));
}

StringifiedNode QBQueryComponentStringifier_PGSQL::stringifyExpr_ELEMSQLLimitExpr(
    const SQLSelectStmtComponent*, const ELEMSQLLimitExpr* limit, int level,
    TopLevelQueryComponentElementEnum) {
    StringifiedNode node;
    const std::string newline = newlineIndent(level);
    if (isSet(limit->rowCount)) node.append(newline + "LIMIT " + std::to_string(limit->rowCount));
    if (isSet(limit->offset)) node.append(newline + "OFFSET " + std::to_string(limit->offset));
    return node;
}

StringifiedNode QBQueryComponentStringifier_SQLITE::stringifyExpr_ELEMSQLLimitExpr(
    const SQLSelectStmtComponent*, const ELEMSQLLimitExpr* limit, int level,
    TopLevelQueryComponentElementEnum) {
    StringifiedNode node;
    if (isUnlimited(limit)) return node;
    const std::string newline = newlineIndent(level);
    // A count of -1 means all rows here, which is how the model marks it as not set.
    node.append(newline + "LIMIT " + std::to_string(limit->rowCount));
    if (isSet(limit->offset)) node.append(newline + "OFFSET " + std::to_string(limit->offset));
    return node;
}

StringifiedNode QBQueryComponentStringifier_MSSQL::stringifyExpr_ELEMSQLLimitExpr(
    const SQLSelectStmtComponent* statement, const ELEMSQLLimitExpr* limit, int level,
    TopLevelQueryComponentElementEnum) {
    StringifiedNode node;
    if (isUnlimited(limit)) return node;
    const std::string newline = newlineIndent(level);
    if (isUnordered(statement)) node.append(newline + "ORDER BY 1");
    const std::int32_t offset = isSet(limit->offset) ? limit->offset : 0;
    node.append(newline + "OFFSET " + std::to_string(offset) + " ROWS");
    if (isSet(limit->rowCount))
        node.append(newline + "FETCH NEXT " + std::to_string(limit->rowCount) + " ROWS ONLY");
    return node;
}

bool QBQueryComponentStringifier_MSSQL::keepsTableSchema() const {
    return true;
}

StringifiedNode QBQueryComponentStringifier_ORA::stringifyExpr_ELEMSQLLimitExpr(
    const SQLSelectStmtComponent* statement, const ELEMSQLLimitExpr* limit, int level,
    TopLevelQueryComponentElementEnum) {
    StringifiedNode node;
    if (isUnlimited(limit)) return node;
    const std::string newline = newlineIndent(level);
    const std::string option = upperCase(limit->returnOption);
    if (option == "WITH TIES" && isUnordered(statement)) node.append(newline + "ORDER BY 1");
    if (isSet(limit->offset))
        node.append(newline + "OFFSET " + std::to_string(limit->offset) + " ROWS");
    if (isSet(limit->rowCount)) {
        node.append(newline + "FETCH " + (isSet(limit->offset) ? "NEXT " : "FIRST ") +
                    std::to_string(limit->rowCount) + (limit->isPercent ? " PERCENT" : "") +
                    " ROWS " + option);
    }
    return node;
}

std::string QBQueryComponentStringifier_ORA::sourceAliasSeparator() const {
    return " ";
}

StringifiedNode QBQueryComponentStringifier_MONGODB::stringifyComponent(
    const AbstractQueryComponent*, int, SourceChildCallback) {
    return {};
}

}  // namespace QB
