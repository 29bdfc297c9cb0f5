#include "model/components.h"

#include <gtest/gtest.h>

#include <memory>

#include "model/element_expressions.h"
#include "model/tree_walks.h"

using namespace QB;
using namespace QB::Component;
using namespace QB::Component::SQL;

namespace {

constexpr int deep = 100000;

/// @p count conditions, each hung into the one before by @p hang.
template <typename Link, typename Hang>
std::unique_ptr<Link> makeNested(int count, Hang hang) {
    auto first = std::make_unique<Link>();
    Link* last = first.get();
    for (int i = 1; i < count; ++i) {
        auto* link = new Link;
        hang(last, link);
        last = link;
    }
    return first;
}

int countOwned(const AbstractQueryComponent* root) {
    int count = 0;
    Tools::visitOwnedComponents(root, [&count](const AbstractQueryComponent*) { ++count; });
    return count;
}

}  // namespace

TEST(Statement, ElementGivesEachClauseAndRefusesAnythingElse) {
    SQLSelectStmtComponent statement;
    EXPECT_EQ(statement.element(ElementSelectColumn), statement.selectColumnExpr);
    EXPECT_EQ(statement.element(ElementSource), statement.sourceExpr);
    EXPECT_EQ(statement.element(ElementWhere), statement.whereExpr);
    EXPECT_EQ(statement.element(ElementGroupBy), statement.groupByExpr);
    EXPECT_EQ(statement.element(ElementHaving), statement.havingExpr);
    EXPECT_EQ(statement.element(ElementOrderBy), statement.orderByExpr);
    EXPECT_EQ(statement.element(ElementLimit), statement.limitExpr);
    for (const int wrong : {7, -1}) {
        try {
            statement.element(static_cast<TopLevelQueryComponentElementEnum>(wrong));
            ADD_FAILURE() << wrong;
        } catch (const std::runtime_error& error) {
            EXPECT_STREQ(error.what(), "Unexpected TopLevelQueryComponentElement");
        }
    }
}

TEST(Statement, ANewOneIsEmptyWithNoLimit) {
    const SQLSelectStmtComponent statement;
    EXPECT_EQ(countOwned(&statement), 1);
    EXPECT_EQ(statement.limitExpr->offset, -1);
    EXPECT_EQ(statement.limitExpr->rowCount, -1);
    EXPECT_EQ(statement.limitExpr->returnOption, "ONLY");
}

TEST(Components, CommaAndCrossAreTheJoinsThatNeedNoCondition) {
    SQLJoinSourceNodeComponent join;
    for (int type = SQLJoinTypeCustom; type <= SQLJoinTypeFullOuter; ++type) {
        join.joinType = static_cast<SQLJoinType>(type);
        EXPECT_EQ(join.needsCondition(), type != SQLJoinTypeComma && type != SQLJoinTypeCross);
    }
}

TEST(ConditionValue, TheFirstSlotIsMadeOnlyWhenItIsAskedForByReference) {
    SQLConditionValueComponent value;
    EXPECT_EQ(value.firstValue(), nullptr);
    EXPECT_TRUE(value.values.empty());
    value.firstValueRef() = new SQLAnyExpressionColumnComponent;
    value.firstValueRef()->alias = "same slot";
    EXPECT_EQ(value.values.size(), 1U);
    EXPECT_EQ(value.firstValue()->alias, "same slot");
}

TEST(Components, WhatAPartDoesNotHaveIsDestroyedWithoutHarm) {
    EXPECT_EQ(SQLSubquerySourceComponent().subquery, nullptr);
    EXPECT_EQ(SQLCompareConditionComponent().leftValue, nullptr);
    EXPECT_EQ(SQLCompareConditionComponent().logicGate, SQLLogicGateNone);
}

TEST(FieldColumn, LeavesWhatItRefersTo) {
    SQLIdentifierSourceComponent source;
    SQLAnyExpressionColumnComponent referenced;
    auto column = std::make_unique<SQLFieldColumnComponent>();
    column->source = &source;
    column->referencedColumn = &referenced;
    column->extraData = new SQLAbstractColumnComponent::ExtraDataOrderDirection;
    column.reset();
    source.alias = referenced.alias = "still here";
    EXPECT_EQ(source.alias, referenced.alias);
}

TEST(Conditions, ALongChainAndDeepNestingAreWalkedAndDestroyedOnADefaultStack) {
    const auto chain = makeNested<SQLConditionValueComponent>(
        deep, [](auto* last, auto* link) { last->next = link; });
    EXPECT_EQ(countOwned(chain.get()), deep);
    const auto brackets = makeNested<SQLBracketedConditionComponent>(
        deep, [](auto* last, auto* link) { last->inner = link; });
    EXPECT_EQ(countOwned(brackets.get()), deep);
    const auto left = makeNested<SQLCompareConditionComponent>(
        deep, [](auto* last, auto* link) { last->leftValue = link; });
    EXPECT_EQ(countOwned(left.get()), deep);
    const auto mixed =
        makeNested<SQLCompareConditionComponent>(deep, [i = 0](auto* last, auto* link) mutable {
            (++i % 2 ? last->rightValue : last->next) = link;
        });
    EXPECT_EQ(countOwned(mixed.get()), deep);
}

TEST(JoinTree, AHundredThousandJoinsAreWalkedAndDestroyedOnADefaultStack) {
    SQLSelectStmtComponent statement;
    for (int i = 0; i < deep; ++i) {
        auto* join = new SourceNode;
        join->value = new SQLJoinSourceNodeComponent;
        join->left = statement.sourceExpr->root;
        join->right = new SourceNode;
        join->right->value = new SQLIdentifierSourceComponent;
        statement.sourceExpr->root = join;
    }
    EXPECT_EQ(countOwned(&statement), 1 + 2 * deep);
    EXPECT_FALSE(Tools::checkMultipleSchemaInvolved(statement.sourceExpr));
}
