#include "model/detached_parts.h"

#include <gtest/gtest.h>

#include "is_alive.h"
#include "model/element_expressions.h"

using namespace QB;
using namespace QB::Component;
using namespace QB::Component::SQL;
using QB::Test::isAlive;

namespace {

std::unique_ptr<SourceNode> makeTable() {
    auto node = std::make_unique<SourceNode>();
    node->value = new SQLIdentifierSourceComponent;
    return node;
}

std::unique_ptr<SQLFieldColumnComponent> makeColumnOf(SQLAbstractSourceComponent* source) {
    auto column = std::make_unique<SQLFieldColumnComponent>();
    column->source = source;
    return column;
}

/// Gives @p statement a derived table over a statement with something in each of the four clauses
/// that its destructor leaves alone. The leak check sees what is not freed.
SQLSelectStmtComponent* addSubquery(SQLSelectStmtComponent* statement) {
    auto* inner = new SQLSelectStmtComponent;
    inner->whereExpr->root = new SQLConditionValueComponent;
    inner->whereExpr->root->next = new SQLCompareConditionComponent;
    inner->groupByExpr->columns = {new SQLFieldColumnComponent, new SQLFieldColumnComponent};
    inner->havingExpr->root = new SQLBracketedConditionComponent;
    inner->orderByExpr->columns = {new SQLAnyExpressionColumnComponent};
    auto* derived = new SQLSubquerySourceComponent;
    derived->subquery = inner;
    statement->sourceExpr->root = new SourceNode;
    statement->sourceExpr->root->value = derived;
    return inner;
}

}  // namespace

TEST(DetachedParts, APartThatStaysKeepsWhatItRefersToAlongAWholeChain) {
    // One column refers to a and to another column, that one to c. b is referenced from outside.
    // The order of adding must not matter.
    auto a = makeTable();
    auto b = makeTable();
    auto c = makeTable();
    SQLAbstractSourceComponent* const outside = b->value;
    auto columnOfA = makeColumnOf(a->value);
    auto referring = makeColumnOf(c->value);
    const AbstractQueryComponent* const entry = columnOfA.get();
    columnOfA->referencedColumn = referring.get();
    DetachedParts parts;
    parts.add(std::move(c));
    parts.add(std::move(a));
    parts.add(std::move(referring));
    parts.add(std::move(b));
    parts.add(std::move(columnOfA));
    parts.freeUnreferenced({entry, outside});
    EXPECT_EQ(parts.size(), 5U);
    parts.freeUnreferenced({outside});
    EXPECT_EQ(parts.size(), 1U);
}

TEST(DetachedParts, AReferenceIntoAPartKeepsAllOfItAndTheRestIsFreedWithItsUnownedClauses) {
    SQLSelectStmtComponent statement;
    const long clauseId = addSubquery(addSubquery(&statement))->havingExpr->root->id();
    auto kept = makeTable();
    kept->left = makeTable().release();
    const AbstractQueryComponent* const inside = kept->left->value;
    const long keptId = kept->value->id();
    DetachedParts parts;
    parts.add(std::unique_ptr<SourceNode>(std::exchange(statement.sourceExpr->root, nullptr)));
    parts.add(std::move(kept));
    EXPECT_TRUE(isAlive(clauseId));
    parts.freeUnreferenced({inside});
    EXPECT_EQ(parts.size(), 1U);
    EXPECT_TRUE(isAlive(keptId));
    EXPECT_FALSE(isAlive(clauseId));
    parts.freeUnreferenced({});
    EXPECT_TRUE(parts.isEmpty());
    EXPECT_FALSE(isAlive(keptId));
}

TEST(References, AreCollectedFromEveryClauseAndFromSubqueries) {
    SQLSelectStmtComponent statement;
    SQLSelectStmtComponent* const inner = addSubquery(&statement);
    SQLIdentifierSourceComponent source;
    SQLAnyExpressionColumnComponent column;
    statement.selectColumnExpr->columns.push_back(makeColumnOf(&source).release());
    auto ordered = makeColumnOf(nullptr);
    ordered->referencedColumn = &column;
    inner->orderByExpr->columns.push_back(ordered.release());
    DetachedParts::References references;
    collectReferences(&statement, references);
    EXPECT_EQ(references, (DetachedParts::References{&source, &column}));
    destroyUnownedClauses(&statement);
    EXPECT_TRUE(inner->orderByExpr->columns.empty());
    destroyUnownedClauses(nullptr);
}
