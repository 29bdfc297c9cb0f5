#include <gtest/gtest.h>

#include <stdexcept>

#include "stringifier/query_component_stringifier.h"
#include "stringifier/statement_builder.h"
#include "support/host_callbacks.h"

using namespace QB;
using namespace QB::Test;
using Component::AbstractQueryComponent;

namespace {

class Stringifier : public testing::Test {
protected:
    std::unique_ptr<QBQueryComponentStringifier> create(DatabaseType type) {
        return QBQueryComponentStringifier::createStringifier({type, 0});
    }

    HostCallbacks m_host;
    std::unique_ptr<QBQueryComponentStringifier> m_mysql = create(DatabaseTypeMySQL);
};

TEST_F(Stringifier, GivesNothingForNothing) {
    EXPECT_FALSE(create(DatabaseTypeNone));
    EXPECT_FALSE(create(static_cast<DatabaseType>(9)));
    const Statement statement = newStatement();
    const auto mongo = create(DatabaseTypeMongoDB);
    ASSERT_TRUE(mongo);
    EXPECT_EQ(mongo->stringifyQuery(statement.get()), "");
    m_mysql->stringifyQuery(statement.get());
    EXPECT_EQ(m_mysql->componentRanges().size(), 1U);
    const struct : AbstractQueryComponent {
    } unknown;
    EXPECT_EQ(m_mysql->stringifyQuery(&unknown), "");
    EXPECT_TRUE(m_mysql->componentRanges().empty());
    EXPECT_EQ(m_mysql->stringifyQuery(nullptr), "");
}

TEST_F(Stringifier, WritesAClassDerivedFromOneItKnowsAsThatOne) {
    struct Derived : SQLAnyExpressionColumnComponent {
    } column;
    column.expression = "now()";
    EXPECT_EQ(m_mysql->stringifyQuery(&column), "now()");
    EXPECT_EQ(m_mysql->componentRanges().at(&column), (QBRange{0, 5}));
}

TEST_F(Stringifier, WritesACommaForAJoinThatHasNoWordsYet) {
    const Statement s = newStatement();
    s->sourceExpr->root = join(table("a"), SQLJoinTypeCustom, table("b"));
    EXPECT_EQ(m_mysql->stringifyQuery(s.get()), "SELECT\n\t*\nFROM\n\t`a`,\n\t`b`");
    joinOf(s->sourceExpr->root)->joinText = "STRAIGHT_JOIN";
    EXPECT_EQ(m_mysql->stringifyQuery(s.get()), "SELECT\n\t*\nFROM\n\t`a`\n\tSTRAIGHT_JOIN\n\t`b`");
}

TEST_F(Stringifier, WritesASubqueryAloneAtTheLeftMargin) {
    Statement inner = newStatement();
    inner->sourceExpr->root = table("t", "", {"shop"});
    const AbstractQueryComponent* innerStatement = inner.get();
    const Statement outer = newStatement();
    outer->sourceExpr->root = subquery(std::move(inner));
    m_mysql->setCurrentSchema("shop");
    EXPECT_EQ(m_mysql->stringifyQuery(innerStatement), "SELECT\n\t*\nFROM\n\t`t`");
    // Outside a statement nothing says which schemas are in use, so all names are whole.
    const auto* source =
        static_cast<SQLSelectStmtComponent*>(
            static_cast<SQLSubquerySourceComponent*>(outer->sourceExpr->root->value)->subquery)
            ->sourceExpr->root->value;
    EXPECT_EQ(m_mysql->stringifyQuery(source), "`shop`.`t`");
}

TEST_F(Stringifier, KeepsTheKeywordOfAClauseWithoutText) {
    const Statement s = newStatement();
    s->selectColumnExpr->selectOption = "DISTINCT";
    s->whereExpr->root = value({});
    s->groupByExpr->columns = {expression(""), expression("")};
    EXPECT_EQ(m_mysql->stringifyQuery(s.get()), "SELECT\n\t*\nWHERE\n\t\nGROUP BY\n\t, \n\t");
}

TEST_F(Stringifier, WritesTheTableOfAFieldThatWasWrittenWithAnAlias) {
    const Statement s = newStatement();
    s->sourceExpr->root = table("orders", "o", {"shop"});
    auto* column = field(s->sourceExpr->root, "id");
    column->parentPath = {"o"};
    s->selectColumnExpr->columns = {column};
    const std::string start = "SELECT\n\t";
    EXPECT_EQ(m_mysql->stringifyQuery(s.get()), start + "o.`id`\nFROM\n\t`shop`.`orders` AS `o`");
    s->sourceExpr->root->value->alias.clear();
    EXPECT_EQ(m_mysql->stringifyQuery(s.get()),
              start + "`shop`.`orders`.`id`\nFROM\n\t`shop`.`orders`");
}

TEST_F(Stringifier, WritesOperandsThatAreMissing) {
    const auto text = [this](CompareOp op, std::vector<SQLAbstractColumnComponent*> right) {
        const std::unique_ptr<AbstractQueryComponent> c(compare(expression("a"), op, right));
        return m_mysql->stringifyQuery(c.get());
    };
    EXPECT_EQ(text(CompareOpBetween, {expression("1")}), "a BETWEEN 1 AND ");
    EXPECT_EQ(text(CompareOpBetween, {}), "a BETWEEN ");
    EXPECT_EQ(text(CompareOpIn, {}), "a IN ()");
    EXPECT_EQ(text(CompareOpIn, {nullptr, expression("1"), nullptr}), "a IN (1,)");
    EXPECT_EQ(text(static_cast<CompareOp>(22), {expression("1")}), "");
    const SQLCompareConditionComponent empty;
    EXPECT_EQ(m_mysql->stringifyQuery(&empty), " = ");
}

TEST_F(Stringifier, WritesAValueListAsTheFirstParameterSays) {
    const std::unique_ptr<SQLConditionValueComponent> list(
        negated(value({expression("1"), expression("2"), expression("3")})));
    EXPECT_EQ(m_mysql->stringifyQuery(list.get()), "NOT 1,2,3");
    m_mysql->setParameter(conditionValueListModeKey, 2);
    m_mysql->setParameter(conditionValueListModeKey, 0);
    EXPECT_EQ(m_mysql->stringifyQuery(list.get()), "NOT 1 AND 2");
}

TEST_F(Stringifier, WritesTwoBoundsWhateverModeListsHaveAndNoneThatIsChainedByOr) {
    auto* condition = compare(expression("a"), CompareOpBetween, {expression("1")});
    const std::unique_ptr<AbstractQueryComponent> owner(condition);
    condition->rightValue->next = value({expression("2"), expression("3")});
    condition->rightValue->next->logicGate = SQLLogicGateAnd;
    EXPECT_EQ(m_mysql->stringifyQuery(condition), "a BETWEEN 1 AND 2");
    condition->rightValue->next->logicGate = SQLLogicGateOr;
    EXPECT_EQ(m_mysql->stringifyQuery(condition), "a BETWEEN 1 AND  OR\n2,3");
    // The user chose another operator: a second bound there would read as a second condition.
    condition->rightValue->next->logicGate = SQLLogicGateAnd;
    condition->compareOp = CompareOpLess;
    EXPECT_EQ(m_mysql->stringifyQuery(condition), "a < 1");
}

TEST_F(Stringifier, StaysUsableWhenTheHostThrows) {
    const Statement s = newStatement();
    s->sourceExpr->root = table("t", "", {"shop"});
    m_mysql->setCurrentSchema("shop");
    Callback::formatIdentifier = [](const std::string&, DatabaseType, int) -> std::string {
        throw std::runtime_error("no connection");
    };
    EXPECT_THROW(m_mysql->stringifyQuery(s.get()), std::runtime_error);
    EXPECT_TRUE(m_mysql->componentRanges().empty());
    Callback::formatIdentifier = HostCallbacks::quoteAlways;
    EXPECT_EQ(m_mysql->stringifyQuery(s->sourceExpr->root->value), "`shop`.`t`");
}

}  // namespace
