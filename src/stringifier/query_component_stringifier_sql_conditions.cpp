// Conditions: the chains of WHERE, HAVING and ON, and their operands.

#include <algorithm>
#include <iterator>

#include "model/kind_of.h"
#include "stringifier/query_component_stringifier_sql.h"

namespace QB {

using namespace Component;
using namespace Component::SQL;

namespace {

// How a value list is written.
constexpr int listModeFromParameter = -1;
constexpr int listModeFirst = 0;
constexpr int listModeComma = 1;
constexpr int listModeRange = 2;

/// What a comparison writes around its right operand.
struct OperatorText {
    std::string_view before;
    bool hasRight;
    std::string_view after;
    int listMode;
};

constexpr OperatorText operatorTexts[] = {
    {" ", true, "", listModeFirst},               // CompareOpNone
    {" = ", true, "", listModeFirst},             // CompareOpEqual
    {" <> ", true, "", listModeFirst},            // CompareOpNotEqual
    {" < ", true, "", listModeFirst},             // CompareOpLess
    {" <= ", true, "", listModeFirst},            // CompareOpLessOrEqual
    {" > ", true, "", listModeFirst},             // CompareOpGreater
    {" >= ", true, "", listModeFirst},            // CompareOpGreaterOrEqual
    {" LIKE ", true, "", listModeFirst},          // CompareOpLike
    {" NOT LIKE ", true, "", listModeFirst},      // CompareOpNotLike
    {" LIKE '%", true, "%'", listModeFirst},      // CompareOpContains
    {" NOT LIKE '%", true, "%'", listModeFirst},  // CompareOpNotContains
    {" LIKE '", true, "%'", listModeFirst},       // CompareOpBeginsWith
    {" NOT LIKE '", true, "%'", listModeFirst},   // CompareOpNotBeginsWith
    {" LIKE '%", true, "'", listModeFirst},       // CompareOpEndsWith
    {" NOT LIKE '%", true, "'", listModeFirst},   // CompareOpNotEndsWith
    {" IS NULL", false, "", listModeFirst},       // CompareOpIsNull
    {" IS NOT NULL", false, "", listModeFirst},   // CompareOpIsNotNull
    {" = \"\"", false, "", listModeFirst},        // CompareOpIsEmpty
    {" <> \"\"", false, "", listModeFirst},       // CompareOpIsNotEmpty
    {" BETWEEN ", true, "", listModeRange},       // CompareOpBetween
    {" NOT BETWEEN ", true, "", listModeRange},   // CompareOpNotBetween
    {" IN (", true, ")", listModeComma},          // CompareOpIn
    {" NOT IN (", true, ")", listModeComma},      // CompareOpNotIn
};
static_assert(std::size(operatorTexts) == CompareOpNotIn - CompareOpNone + 1);

/// Null for a value outside the enumeration.
const OperatorText* operatorText(CompareOp op) {
    if (op < CompareOpNone || op > CompareOpNotIn) return nullptr;
    return &operatorTexts[op - CompareOpNone];
}

/// What ends the line of a condition before the next one.
std::string_view logicText(SQLLogicGate gate) {
    if (gate == SQLLogicGateOr) return " OR";
    if (gate == SQLLogicGateAnd) return " AND";
    return " ";
}

std::string_view separatorOf(int listMode) {
    if (listMode == listModeComma) return ",";
    if (listMode == listModeRange) return " AND ";
    return {};
}

std::size_t itemCount(const SQLConditionValueComponent* value, int listMode) {
    if (listMode == listModeComma) return value->values.size();
    return listMode == listModeRange ? 2 : 1;
}

const SQLAbstractColumnComponent* itemAt(const SQLConditionValueComponent* value,
                                         std::size_t index) {
    return index < value->values.size() ? value->values[index] : nullptr;
}

/// The second shape of a range: a value whose upper bound is the next link of its chain.
bool isRangeChain(const SQLConditionValueComponent* value, int listMode) {
    return listMode == listModeRange && value->values.size() < 2 && value->next &&
           value->next->logicGate == SQLLogicGateAnd;
}

}  // namespace

StringifiedNode QBQueryComponentStringifier_SQL::startOf(
    const SQLAbstractConditionComponent* condition) {
    StringifiedNode node = newNode();
    if (condition->negated) node.setText("NOT ");
    return node;
}

StringifiedNode QBQueryComponentStringifier_SQL::stringifyNextCondition(
    const SQLAbstractConditionComponent* condition, int level) {
    StringifiedNode node = newNode();
    if (!condition->next) return node;
    node.appendLine(logicText(condition->next->logicGate), level);
    appendDeferred(node, condition->next, level);
    return node;
}

StringifiedNode QBQueryComponentStringifier_SQL::stringifyComponent_SQLBracketedConditionComponent(
    const SQLBracketedConditionComponent* condition, int level) {
    StringifiedNode node = startOf(condition);
    node.appendLine("(", level + 1);
    appendDeferred(node, condition->inner, level + 1);
    node.appendLine({}, level);
    node.append(")");
    node.append(stringifyNextCondition(condition, level));
    return node;
}

StringifiedNode QBQueryComponentStringifier_SQL::stringifyComponent_SQLCompareConditionComponent(
    const SQLCompareConditionComponent* condition, int level) {
    StringifiedNode node = startOf(condition);
    if (const OperatorText* op = operatorText(condition->compareOp)) {
        appendDeferred(node, condition->leftValue, level);
        node.append(op->before);
        if (op->hasRight) node.append(rightOperand(condition->rightValue, level, op->listMode));
        if (!op->after.empty()) node.append(op->after);
    }
    node.append(stringifyNextCondition(condition, level));
    return node;
}

StringifiedNode QBQueryComponentStringifier_SQL::rightOperand(
    const SQLAbstractConditionComponent* operand, int level, int listMode) {
    const auto* value = ifKind<SQLConditionValueComponent>(operand);
    if (!value) {
        StringifiedNode node = newNode();
        appendDeferred(node, operand, level);
        return node;
    }
    if (listMode == listModeRange)
        return stringifyComponent_SQLConditionValueComponent(value, level, listMode);
    // What may be chained to it is the upper bound from when the operator was BETWEEN.
    return valueItems(value, level, listMode);
}

int QBQueryComponentStringifier_SQL::listModeParameter() const {
    const QBVariant* mode = parameter(conditionValueListModeKey);
    return mode ? mode->toInt() : listModeComma;
}

StringifiedNode QBQueryComponentStringifier_SQL::stringifyComponent_SQLConditionValueComponent(
    const SQLConditionValueComponent* value, int level, int listMode) {
    if (listMode == listModeFromParameter) listMode = listModeParameter();
    if (isRangeChain(value, listMode)) return betweenChain(value, level);
    StringifiedNode node = valueItems(value, level, listMode);
    node.append(stringifyNextCondition(value, level));
    return node;
}

StringifiedNode QBQueryComponentStringifier_SQL::valueItems(const SQLConditionValueComponent* value,
                                                            int level, int listMode) {
    StringifiedNode node = startOf(value);
    bool isFirst = true;
    const std::size_t count = itemCount(value, listMode);
    for (std::size_t i = 0; i < count; ++i) {
        if (!isFirst) node.append(separatorOf(listMode));
        const auto* item = itemAt(value, i);
        isFirst = isFirst && !item;
        appendDeferred(node, item, level);
    }
    return node;
}

StringifiedNode QBQueryComponentStringifier_SQL::betweenChain(
    const SQLConditionValueComponent* value, int level) {
    StringifiedNode node = startOf(value);
    appendDeferred(node, itemAt(value, 0), level);
    node.append(separatorOf(listModeRange));
    node.append(upperBound(value->next, level));
    return node;
}

/// Of a value its first item, whatever mode lists are written in.
StringifiedNode QBQueryComponentStringifier_SQL::upperBound(
    const SQLAbstractConditionComponent* bound, int level) {
    const auto* value = ifKind<SQLConditionValueComponent>(bound);
    StringifiedNode node = value ? startOf(value) : newNode();
    const AbstractQueryComponent* written = bound;
    if (value) written = itemAt(value, 0);
    appendDeferred(node, written, level);
    return node;
}

}  // namespace QB
