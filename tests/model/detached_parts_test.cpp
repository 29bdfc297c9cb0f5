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

/// A statement with something in each of the four clauses that its destructor leaves alone.
void fillUnownedClauses(SQLSelectStmtComponent* statement) {
    statement->whereExpr->root = new SQLConditionValueComponent;
    statement->whereExpr->root->next = new SQLCompareConditionComponent;
    statement->groupByExpr->columns = {new SQLFieldColumnComponent, new SQLFieldColumnComponent};
    statement->havingExpr->root = new SQLBracketedConditionComponent;
    statement->orderByExpr->columns = {new SQLAnyExpressionColumnComponent};
}

/// Gives @p statement a derived table over a statement with filled clauses.
SQLSelectStmtComponent* addSubquery(SQLSelectStmtComponent* statement) {
    auto* derived = new SQLSubquerySourceComponent;
    auto* inner = new SQLSelectStmtComponent;
    derived->subquery = inner;
    statement->sourceExpr->root = new SourceNode;
    statement->sourceExpr->root->value = derived;
    fillUnownedClauses(inner);
    return inner;
}

}  // namespace

TEST(UnownedClauses, AreDestroyedInTheStatementAndInSubqueriesOfSubqueries) {
    SQLSelectStmtComponent statement;
    fillUnownedClauses(&statement);
    SQLSelectStmtComponent* const innermost = addSubquery(addSubquery(&statement));
    destroyUnownedClauses(&statement);  // the leak check sees the rest
    EXPECT_EQ(statement.whereExpr->root, nullptr);
    EXPECT_TRUE(innermost->orderByExpr->columns.empty());
    destroyUnownedClauses(nullptr);
}

TEST(DetachedParts, APartThatStaysKeepsWhatItRefersToAlongAWholeChain) {
    // b is referenced from outside; a column in b's join condition refers to a, one with a's
    // column to c. The order of adding must not matter.
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
    const long clauseId = addSubquery(&statement)->havingExpr->root->id();
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
}
