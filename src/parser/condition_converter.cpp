// WHERE, HAVING and ON: chains, brackets, comparisons and values.

#include <optional>
#include <stdexcept>
#include <utility>

#include "parser/converter_texts.h"
#include "parser/statement_converter.h"

namespace QB {

using namespace Component::SQL;

namespace {

struct OperatorWords {
    const char* text;
    CompareOp op;
};

constexpr OperatorWords operatorWords[] = {{"=", CompareOpEqual},
                                           {"<>", CompareOpNotEqual},
                                           {"!=", CompareOpNotEqual},
                                           {"<", CompareOpLess},
                                           {"<=", CompareOpLessOrEqual},
                                           {">", CompareOpGreater},
                                           {">=", CompareOpGreaterOrEqual},
                                           {"LIKE", CompareOpLike},
                                           {"NOT LIKE", CompareOpNotLike},
                                           {"IS NULL", CompareOpIsNull},
                                           {"IS NOT NULL", CompareOpIsNotNull},
                                           {"BETWEEN", CompareOpBetween},
                                           {"NOT BETWEEN", CompareOpNotBetween},
                                           {"IN", CompareOpIn},
                                           {"NOT IN", CompareOpNotIn}};

/// IS and IS NOT name an operator together with what follows them.
std::optional<CompareOp> nullTestOf(SqletExpr* expr, const char* words) {
    const bool isNot = isWord(words, "IS NOT");
    if (!isNot && !isWord(words, "IS")) return {};
    SqletExpr* const right = sqlet_expr_right(expr);
    if (!right || !isWord(sqlet_expr_complex(right), "NULL")) return {};
    return isNot ? CompareOpIsNotNull : CompareOpIsNull;
}

std::optional<CompareOp> comparisonOf(SqletExpr* expr) {
    const char* const words = sqlet_expr_op(expr);
    if (!words || !sqlet_expr_left(expr)) return {};
    for (const OperatorWords& known : operatorWords) {
        if (isWord(words, known.text)) return known.op;
    }
    return nullTestOf(expr, words);
}

SQLLogicGate gateOf(SqletExpr* expr) {
    const char* const words = sqlet_expr_op(expr);
    if (isWord(words, "AND")) return SQLLogicGateAnd;
    return isWord(words, "OR") ? SQLLogicGateOr : SQLLogicGateNone;
}

bool isChain(SqletExpr* expr) {
    return gateOf(expr) != SQLLogicGateNone;
}

std::unique_ptr<SQLAbstractConditionComponent> freeText(SqletExpr* expr) {
    auto column = std::make_unique<SQLAnyExpressionColumnComponent>();
    column->expression = textOf(sqlet_expr_complex(expr));
    auto value = std::make_unique<SQLConditionValueComponent>();
    value->values.push_back(column.release());
    return value;
}

}  // namespace

StatementConverter::ConditionPtr StatementConverter::convertCondition(SqletExpr* expr,
                                                                      unsigned depth,
                                                                      Condition** tail) {
    if (tail) *tail = nullptr;
    if (!expr) return nullptr;
    const unsigned brackets = sqlet_expr_inside_number_of_parens(expr);
    if (depth > brackets) return nullptr;

    ConditionPtr result = convertChain(expr, brackets, tail);
    const auto negatedAt = static_cast<unsigned>(sqlet_expr_is_negated(expr));
    if (negatedAt == brackets + 1) result->negated = true;  // a chain's first link has its own
    for (unsigned around = brackets; around > depth; --around) {
        auto bracket = std::make_unique<SQLBracketedConditionComponent>();
        bracket->inner = result.release();
        bracket->negated = negatedAt == around;
        result = std::move(bracket);
    }
    if (depth < brackets && tail) *tail = result.get();
    return result;
}

/// A run of AND and OR leans to the left: down to its first link, and back.
StatementConverter::ConditionPtr StatementConverter::convertChain(SqletExpr* expr, unsigned depth,
                                                                  Condition** tail) {
    if (!isChain(expr)) {
        ConditionPtr link = convertLink(expr, depth);
        if (tail) *tail = link.get();
        return link;
    }
    std::vector<SqletExpr*> gates;
    SqletExpr* left = expr;
    while (left && isChain(left) && sqlet_expr_inside_number_of_parens(left) == depth) {
        gates.push_back(left);
        left = sqlet_expr_left(left);
    }
    Condition* last = nullptr;
    ConditionPtr first = convertCondition(left, depth, &last);
    if (!first) throw new std::runtime_error("currNode1 not exist unexpectedly");
    for (; !gates.empty(); gates.pop_back()) {
        const SQLLogicGate gate = gateOf(gates.back());
        first->logicGate = gate;
        Condition* rightLast = nullptr;
        ConditionPtr right = convertCondition(sqlet_expr_right(gates.back()), depth, &rightLast);
        if (!right) continue;
        right->logicGate = gate;
        last->next = right.release();
        last = rightLast;
    }
    if (tail) *tail = last;
    return first;
}

StatementConverter::ConditionPtr StatementConverter::convertLink(SqletExpr* expr, unsigned depth) {
    if (const auto op = comparisonOf(expr)) return convertComparison(expr, *op, depth);
    if (sqlet_expr_left(expr)) return freeText(expr);
    if (const char* name = sqlet_expr_name(expr)) return convertNamedValue(expr, name);
    if (SqletColumn* first = sqlet_expr_list_item(expr)) return convertValueList(first);
    return freeText(expr);
}

StatementConverter::ConditionPtr StatementConverter::convertComparison(SqletExpr* expr,
                                                                       CompareOp op,
                                                                       unsigned depth) {
    auto comparison = std::make_unique<SQLCompareConditionComponent>();
    comparison->compareOp = op;
    comparison->leftValue = convertCondition(sqlet_expr_left(expr), depth, nullptr).release();
    comparison->rightValue = convertCondition(sqlet_expr_right(expr), depth, nullptr).release();
    return comparison;
}

StatementConverter::ConditionPtr StatementConverter::convertValueList(SqletColumn* first) const {
    auto value = std::make_unique<SQLConditionValueComponent>();
    for (SqletColumn* item = first; item; item = sqlet_select_column_next(item)) {
        ColumnAliases noAliases;
        value->values.push_back(convertColumn(item, noAliases).release());
    }
    return value;
}

StatementConverter::ConditionPtr StatementConverter::convertNamedValue(SqletExpr* expr,
                                                                       const char* name) const {
    auto field = std::make_unique<SQLFieldColumnComponent>();
    std::vector<std::string>& path = field->parentPath;
    appendPresent(path, sqlet_expr_parent1(expr));
    appendPresent(path, sqlet_expr_parent2(expr));
    if (path.size() == 1) {
        field->source = findSource(path.front());
        if (!field->source && !m_defaultSchema.empty()) path.insert(path.begin(), m_defaultSchema);
    }
    field->fieldName = name;
    field->aggregateFunction = textOf(sqlet_expr_aggre_func(expr));
    auto value = std::make_unique<SQLConditionValueComponent>();
    value->values.push_back(field.release());
    return value;
}

}  // namespace QB
