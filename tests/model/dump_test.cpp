#include "model/dump.h"

#include <gtest/gtest.h>

#include "sample_statement.h"

using namespace QB;
using QB::Test::Sample;

TEST(Dump, ShowsEverySeededFaultAndNoAddress) {
    const Sample sound, again;
    const std::string expected = dumpStatement(&sound.statement);
    EXPECT_EQ(dumpStatement(&again.statement), expected);
    const auto seed = [&expected](const char* name, const auto& fault) {
        Sample faulty;
        fault(faulty);
        EXPECT_NE(dumpStatement(&faulty.statement), expected) << name;
    };
    seed("option", [](auto& s) { s.statement.selectColumnExpr->selectOption = "DISTINCT"; });
    seed("field name", [](auto& s) { s.field->fieldName = "F"; });
    seed("field alias", [](auto& s) { s.field->alias.clear(); });
    seed("aggregate", [](auto& s) { s.field->aggregateFunction = "MAX"; });
    seed("asterisk", [](auto& s) { s.field->isAsterisk = true; });
    seed("path", [](auto& s) { s.field->parentPath = {"s.a"}; });
    seed("source", [](auto& s) { s.field->source = s.b; });
    seed("no source", [](auto& s) { s.field->source = nullptr; });
    seed("referenced column", [](auto& s) { s.ordered->referencedColumn = s.expression; });
    seed("expression", [](auto& s) { s.expression->expression = "1 + 1"; });
    seed("column order", [](auto& s) {
        s.statement.selectColumnExpr->columns = {s.expression, s.field};
    });
    seed("table name", [](auto& s) { s.a->name = "b"; });
    seed("table alias", [](auto& s) { s.b->alias = "t"; });
    seed("table path", [](auto& s) { s.b->path = {"s"}; });
    seed("sides", [](auto& s) {
        std::swap(s.statement.sourceExpr->root->left, s.statement.sourceExpr->root->right);
    });
    seed("join type", [](auto& s) { s.join->joinType = SQLJoinTypeLeft; });
    seed("join text", [](auto& s) { s.join->joinText = "STRAIGHT_JOIN"; });
    seed("using", [](auto& s) { s.join->isUsing = true; });
    seed("operator", [](auto& s) { s.compare->compareOp = CompareOpNone; });
    seed("operands", [](auto& s) { std::swap(s.compare->leftValue, s.compare->rightValue); });
    seed("value", [](auto& s) { s.value->firstValueRef(); });
    seed("gate", [](auto& s) { s.bracket->logicGate = SQLLogicGateOr; });
    seed("negation", [](auto& s) { s.bracket->negated = true; });
    seed("chain or bracket", [](auto& s) { std::swap(s.bracket->inner, s.bracket->next); });
    seed("clause",
         [](auto& s) { std::swap(s.statement.whereExpr->root, s.statement.havingExpr->root); });
    seed("list", [](auto& s) {
        std::swap(s.statement.groupByExpr->columns, s.statement.orderByExpr->columns);
    });
    seed("direction", [](auto& s) { s.direction->direction = OrderDirectionDescending; });
    seed("offset", [](auto& s) { s.statement.limitExpr->offset = 0; });
    seed("rows", [](auto& s) { s.statement.limitExpr->rowCount = 0; });
    seed("percent", [](auto& s) { s.statement.limitExpr->isPercent = true; });
    seed("ties", [](auto& s) { s.statement.limitExpr->returnOption = "WITH TIES"; });
}
