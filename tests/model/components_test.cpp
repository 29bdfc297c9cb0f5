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

int countOwned(const AbstractQueryComponent* root) {
    int count = 0;
    Tools::visitOwnedComponents(root, [&count](const AbstractQueryComponent*) { ++count; });
    return count;
}

/// Walks and destroys conditions that are each hung into the one before by @p hang.
template <typename Link, typename Hang>
void walkAndDestroyNested(Hang hang) {
    const auto first = std::make_unique<Link>();
    Link* last = first.get();
    for (int i = 1; i < deep; ++i) {
        auto* link = new Link;
        hang(i, last) = link;
        last = link;
    }
    EXPECT_EQ(countOwned(first.get()), deep);
}

}  // namespace

TEST(Conditions, ALongChainAndDeepNestingAreWalkedAndDestroyedOnADefaultStack) {
    using Condition = SQLAbstractConditionComponent*;
    using Compare = SQLCompareConditionComponent;
    walkAndDestroyNested<SQLConditionValueComponent>(
        [](int, auto* last) -> Condition& { return last->next; });
    walkAndDestroyNested<SQLBracketedConditionComponent>(
        [](int, auto* last) -> Condition& { return last->inner; });
    walkAndDestroyNested<Compare>([](int i, auto* last) -> Condition& {
        return i % 3 == 0 ? last->leftValue : i % 3 == 1 ? last->rightValue : last->next;
    });
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
