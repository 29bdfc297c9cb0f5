#include "model/detached_parts.h"

#include <gtest/gtest.h>

#include "model/element_expressions.h"
#include "model/liveness.h"

using namespace QB;
using namespace QB::Component;
using namespace QB::Component::SQL;

namespace {

bool isAlive(const long id) {
    bool result = false;
    runIfAlive(id, [&result](bool alive) { result = alive; });
    return result;
}

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
    SQLSelectStmtComponent* const inner = addSubquery(&statement);
    SQLSelectStmtComponent* const innermost = addSubquery(inner);
    const std::vector<long> ids = {
        statement.whereExpr->root->id(), statement.whereExpr->root->next->id(),
        inner->groupByExpr->columns[1]->id(), innermost->havingExpr->root->id(),
        innermost->orderByExpr->columns[0]->id()};
    destroyUnownedClauses(&statement);
    for (const long id : ids)
        EXPECT_FALSE(isAlive(id));
    EXPECT_EQ(statement.whereExpr->root, nullptr);
    EXPECT_TRUE(innermost->orderByExpr->columns.empty());
    destroyUnownedClauses(nullptr);
}

TEST(DetachedParts, FreeWhatNothingRefersTo) {
    DetachedParts parts;
    auto kept = makeTable();
    auto freed = makeTable();
    SQLAbstractSourceComponent* const keptSource = kept->value;
    const long freedId = freed->value->id();
    parts.add(std::move(freed));
    parts.add(std::move(kept));
    parts.freeUnreferenced({keptSource});
    EXPECT_EQ(parts.size(), 1U);
    EXPECT_FALSE(isAlive(freedId));
    EXPECT_TRUE(isAlive(keptSource->id()));
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

TEST(DetachedParts, ReferencesIntoAPartKeepAllOfIt) {
    auto node = makeTable();
    node->left = makeTable().release();
    const AbstractQueryComponent* const inside = node->left->value;
    const long rootId = node->value->id();
    DetachedParts parts;
    parts.add(std::move(node));
    parts.freeUnreferenced({inside});
    EXPECT_TRUE(isAlive(rootId));
    parts.freeUnreferenced({});
    EXPECT_TRUE(parts.isEmpty());
    EXPECT_FALSE(isAlive(rootId));
}

TEST(DetachedParts, ASubqueryGoesWithItsUnownedClauses) {
    SQLSelectStmtComponent statement;
    const long id = addSubquery(&statement)->havingExpr->root->id();
    {
        DetachedParts parts;
        parts.add(std::unique_ptr<SourceNode>(std::exchange(statement.sourceExpr->root, nullptr)));
        EXPECT_TRUE(isAlive(id));
    }
    EXPECT_FALSE(isAlive(id));
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
