#include "model/dump.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>

#include "model/detached_parts.h"
#include "model/element_expressions.h"

using namespace QB;
using namespace QB::Component::SQL;

namespace {

/// SELECT a.f AS x, 1+1 FROM (a JOIN b ON a.f = b.g) WHERE NOT (...) GROUP BY ... ORDER BY ...
/// with the parts by name, so that a test can put a fault into each.
struct Sample {
    SQLSelectStmtComponent statement;
    SQLFieldColumnComponent* field = new SQLFieldColumnComponent;
    SQLAnyExpressionColumnComponent* expression = new SQLAnyExpressionColumnComponent;
    SQLIdentifierSourceComponent* a = new SQLIdentifierSourceComponent;
    SQLIdentifierSourceComponent* b = new SQLIdentifierSourceComponent;
    SQLJoinSourceNodeComponent* join = new SQLJoinSourceNodeComponent;
    SQLCompareConditionComponent* compare = new SQLCompareConditionComponent;
    SQLConditionValueComponent* value = new SQLConditionValueComponent;
    SQLBracketedConditionComponent* bracket = new SQLBracketedConditionComponent;
    SQLFieldColumnComponent* ordered = new SQLFieldColumnComponent;
    SQLAbstractColumnComponent::ExtraDataOrderDirection* direction =
        new SQLAbstractColumnComponent::ExtraDataOrderDirection;

    Sample() {
        field->fieldName = "f";
        field->alias = "x";
        field->source = a;
        field->parentPath = {"s", "a"};
        expression->expression = "1+1";
        statement.selectColumnExpr->columns = {field, expression};
        a->name = "a";
        b->name = "b";
        join->joinType = SQLJoinTypeInner;
        join->condition = compare;
        compare->leftValue = value;
        SourceNode* root = statement.sourceExpr->root = new SourceNode;
        root->value = join;
        root->left = leaf(a);
        root->right = leaf(b);
        statement.whereExpr->root = bracket;
        bracket->inner = new SQLConditionValueComponent;
        ordered->fieldName = "x";
        ordered->referencedColumn = field;
        ordered->extraData = direction;
        statement.orderByExpr->columns = {ordered};
    }
    ~Sample() { destroyUnownedClauses(&statement); }

    static SourceNode* leaf(SQLAbstractSourceComponent* source) {
        auto* node = new SourceNode;
        node->value = source;
        return node;
    }
};

using Fault = std::function<void(Sample&)>;

/// One fault for everything that the dump promises to show.
std::map<std::string, Fault> seededFaults() {
    return {
        {"option",
         [](Sample& s) {
             s.statement.selectColumnExpr->selectOption = "DISTINCT";
         }},
        {"field name",
         [](Sample& s) {
             s.field->fieldName = "F";
         }},
        {"field alias",
         [](Sample& s) {
             s.field->alias.clear();
         }},
        {"aggregate",
         [](Sample& s) {
             s.field->aggregateFunction = "MAX";
         }},
        {"asterisk",
         [](Sample& s) {
             s.field->isAsterisk = true;
         }},
        {"path",
         [](Sample& s) {
             s.field->parentPath = {"s.a"};
         }},
        {"source",
         [](Sample& s) {
             s.field->source = s.b;
         }},
        {"no source",
         [](Sample& s) {
             s.field->source = nullptr;
         }},
        {"referenced column",
         [](Sample& s) {
             s.ordered->referencedColumn = s.expression;
         }},
        {"expression",
         [](Sample& s) {
             s.expression->expression = "1 + 1";
         }},
        {"column order",
         [](Sample& s) {
             s.statement.selectColumnExpr->columns = {s.expression, s.field};
         }},
        {"table name",
         [](Sample& s) {
             s.a->name = "b";
         }},
        {"table alias",
         [](Sample& s) {
             s.b->alias = "t";
         }},
        {"table path",
         [](Sample& s) {
             s.b->path = {"s"};
         }},
        {"sides",
         [](Sample& s) {
             std::swap(s.statement.sourceExpr->root->left, s.statement.sourceExpr->root->right);
         }},
        {"join type",
         [](Sample& s) {
             s.join->joinType = SQLJoinTypeLeft;
         }},
        {"join text",
         [](Sample& s) {
             s.join->joinText = "STRAIGHT_JOIN";
         }},
        {"using",
         [](Sample& s) {
             s.join->isUsing = true;
         }},
        {"operator",
         [](Sample& s) {
             s.compare->compareOp = CompareOpNone;
         }},
        {"operands",
         [](Sample& s) {
             std::swap(s.compare->leftValue, s.compare->rightValue);
         }},
        {"value",
         [](Sample& s) {
             s.value->firstValueRef();
         }},
        {"gate",
         [](Sample& s) {
             s.bracket->logicGate = SQLLogicGateOr;
         }},
        {"negation",
         [](Sample& s) {
             s.bracket->negated = true;
         }},
        {"chain or bracket",
         [](Sample& s) {
             std::swap(s.bracket->inner, s.bracket->next);
         }},
        {"clause",
         [](Sample& s) {
             std::swap(s.statement.whereExpr->root, s.statement.havingExpr->root);
         }},
        {"list",
         [](Sample& s) {
             std::swap(s.statement.groupByExpr->columns, s.statement.orderByExpr->columns);
         }},
        {"direction",
         [](Sample& s) {
             s.direction->direction = OrderDirectionDescending;
         }},
        {"offset",
         [](Sample& s) {
             s.statement.limitExpr->offset = 0;
         }},
        {"rows",
         [](Sample& s) {
             s.statement.limitExpr->rowCount = 0;
         }},
        {"percent",
         [](Sample& s) {
             s.statement.limitExpr->isPercent = true;
         }},
        {"ties",
         [](Sample& s) {
             s.statement.limitExpr->returnOption = "WITH TIES";
         }},
    };
}

}  // namespace

TEST(Dump, IsTheSameForEqualModelsAtOtherAddresses) {
    const Sample first;
    const Sample second;
    EXPECT_EQ(dumpStatement(&first.statement), dumpStatement(&second.statement));
}

TEST(Dump, ShowsEverySeededFault) {
    const Sample sound;
    const std::string expected = dumpStatement(&sound.statement);
    for (const auto& [name, fault] : seededFaults()) {
        Sample faulty;
        fault(faulty);
        EXPECT_NE(dumpStatement(&faulty.statement), expected) << name;
    }
}

TEST(Dump, ReadsAsIndentedLines) {
    const Sample sample;
    EXPECT_EQ(dumpStatement(&sample.statement), R"(statement
  select
    field "f" path=["s", "a"] source=1 as="x"
    expression "1+1"
  from
    join INNER JOIN
      on
        compare op=0
          value
          (null)
      table "a"
      table "b"
  where
    bracket
      value
  order by
    field "x" column=1 direction=0
)");
    EXPECT_EQ(dumpStatement(nullptr), "(null)\n");
}
