#include "model/statement_record.h"

#include <gtest/gtest.h>

#include "is_alive.h"
#include "model/dump.h"
#include "model/tree_walks.h"
#include "sample_statement.h"

using namespace QB;
using namespace QB::Test;
using namespace QB::Component;
using namespace QB::Component::SQL;

namespace {

/// The sample with all other kinds of components in it, empty slots, a subquery, and a table that
/// only a field refers to.
struct Whole : Sample {
    SQLConditionValueComponent* second = new SQLConditionValueComponent;
    SQLBracketedSourceNodeComponent* brackets = new SQLBracketedSourceNodeComponent;
    SQLAnyExpressionSourceComponent* any = new SQLAnyExpressionSourceComponent;
    SQLSubquerySourceComponent* subquery = new SQLSubquerySourceComponent;
    SQLSelectStmtComponent* inner = new SQLSelectStmtComponent;
    SQLFieldColumnComponent* innerField = new SQLFieldColumnComponent;
    SQLFieldColumnComponent* orphaned = new SQLFieldColumnComponent;
    DetachedParts orphans;
    SQLIdentifierSourceComponent* orphan = new SQLIdentifierSourceComponent;

    Whole() {
        subquery->subquery = inner;
        inner->groupByExpr->columns = {innerField, nullptr};
        inner->havingExpr->root = new SQLConditionValueComponent;
        orphans.add(std::unique_ptr<AbstractQueryComponent>(orphan));
        orphaned->source = orphan;
        compare->rightValue = second;
        second->values = {nullptr, orphaned};
        value->next = new SQLConditionValueComponent;
        statement.selectColumnExpr->columns.push_back(nullptr);
        for (SQLAbstractSourceComponent* source :
             {static_cast<SQLAbstractSourceComponent*>(any),
              static_cast<SQLAbstractSourceComponent*>(subquery)})
            addBehind(source);
        auto* outer = new SourceNode;
        outer->value = brackets;
        outer->left = std::exchange(statement.sourceExpr->root, outer);
    }

    void addBehind(SQLAbstractSourceComponent* source) {
        auto* top = new SourceNode;
        top->value = new SQLJoinSourceNodeComponent;
        top->left = std::exchange(statement.sourceExpr->root, top);
        top->right = leaf(source);
    }
};

struct Change {
    const char* name;
    bool isDumped;
    void (*make)(Whole&);
};

// clang-format off: tables
#define ROW(edit, isDumped)              \
    {                                    \
#edit, isDumped, [](Whole & w) { \
            (void)w;                     \
            edit;                        \
        }                                \
    }
#define CHANGE(edit) ROW(edit, true)
#define UNDUMPED(edit) ROW(edit, false)
const Change changes[] = {
    UNDUMPED(),
    CHANGE(w.statement.selectColumnExpr->selectOption = "DISTINCT"),
    CHANGE(w.statement.selectColumnExpr->columns.pop_back()),
    CHANGE(w.a->alias = "other"),
    CHANGE(w.brackets->alias = "other"),
    CHANGE(w.a->path.push_back("")),
    CHANGE(w.a->name = std::string("with \0", 6)),
    CHANGE(w.any->expression = "f(1"),
    CHANGE(w.join->joinType = SQLJoinTypeFullOuter),
    CHANGE(w.join->joinText = "STRAIGHT"),
    CHANGE(w.join->isUsing = true),
    CHANGE(w.expression->alias = "other"),
    CHANGE(w.direction->direction = OrderDirectionDescending),
    UNDUMPED(w.field->extraData = new SQLAbstractColumnComponent::ExtraDataBase),
    CHANGE(w.field->source = w.b),
    CHANGE(w.field->source = nullptr),
    CHANGE(w.field->source = w.orphan),
    CHANGE(w.field->parentPath.pop_back()),
    CHANGE(w.ordered->referencedColumn = w.expression),
    CHANGE(w.field->isAsterisk = true),
    CHANGE(w.field->fieldName += "\xff"),
    CHANGE(w.field->aggregateFunction = "COUNT"),
    CHANGE(w.expression->expression = ""),
    CHANGE(w.bracket->logicGate = SQLLogicGateOr),
    CHANGE(w.compare->negated = true),
    CHANGE(w.bracket->next = new SQLCompareConditionComponent),
    CHANGE(w.second->values.push_back(nullptr)),
    CHANGE(w.compare->compareOp = CompareOpNone),
    CHANGE(std::swap(w.compare->leftValue, w.compare->rightValue)),
    CHANGE(w.bracket->inner->next = new SQLBracketedConditionComponent),
    CHANGE(w.statement.havingExpr->root = new SQLConditionValueComponent),
    CHANGE(w.statement.limitExpr->offset = 0),
    CHANGE(w.statement.limitExpr->rowCount = 2147483647),
    CHANGE(w.statement.limitExpr->isPercent = true),
    CHANGE(w.statement.limitExpr->returnOption = "WITH TIES"),
    CHANGE(w.innerField->aggregateFunction = "MAX"),
    CHANGE(w.inner->limitExpr->offset = 7),
    CHANGE(w.subquery->subquery = nullptr; const OwnedStatement gone(w.inner)),
    UNDUMPED(w.orphan->alias = "gone"),
};
// clang-format on
#undef CHANGE
#undef UNDUMPED
#undef ROW

/// With the ids, which a dump leaves out.
std::string described(const SQLSelectStmtComponent& statement) {
    std::string text = dumpStatement(&statement);
    Tools::visitOwnedComponents(&statement, [&text](const AbstractQueryComponent* component) {
        text += std::to_string(component->id()) + ' ';
    });
    return text;
}

/// Brackets in brackets, each with a link behind it.
SQLAbstractConditionComponent* deepConditions(int depth) {
    SQLAbstractConditionComponent* inner = nullptr;
    for (int i = 0; i < depth; ++i) {
        auto* bracket = new SQLBracketedConditionComponent;
        bracket->inner = inner;
        bracket->next = new SQLConditionValueComponent;
        inner = bracket;
    }
    return inner;
}

}  // namespace

TEST(StatementRecord, HoldsEachFieldAndGivesItBack) {
    for (const Change& change : changes) {
        SCOPED_TRACE(change.name);
        Whole whole;
        const std::string before = recordStatement(whole.statement);
        const std::string dumpBefore = dumpStatement(&whole.statement);
        change.make(whole);
        const std::string record = recordStatement(whole.statement);
        EXPECT_EQ(record == before, change.name == std::string());
        EXPECT_EQ(dumpStatement(&whole.statement) == dumpBefore, !change.isDumped);

        const RestoredStatement restored = restoreStatement(record);
        ASSERT_TRUE(restored.statement);
        EXPECT_EQ(recordStatement(*restored.statement), record);
        EXPECT_EQ(described(*restored.statement), described(whole.statement));
        EXPECT_EQ(restored.detached.size(), 1U);
    }
}

TEST(StatementRecord, AnIdLivesAsLongAsOneOfItsBearers) {
    auto whole = std::make_unique<Whole>();
    const long id = whole->orphan->id();
    RestoredStatement restored = restoreStatement(recordStatement(whole->statement));
    RestoredStatement again = restoreStatement(recordStatement(whole->statement));
    whole.reset();
    EXPECT_TRUE(isAlive(id));
    restored = {};
    EXPECT_TRUE(isAlive(id));
    const std::string record = recordStatement(*again.statement);
    again = {};
    EXPECT_FALSE(isAlive(id));

    restored = restoreStatement(record);  // as when an undo is redone
    EXPECT_TRUE(isAlive(id));
    EXPECT_EQ(recordStatement(*restored.statement), record);
}

TEST(StatementRecord, WhatAnOrphanOwnsAndRefersToIsThereOnce) {
    Whole whole;
    // A subquery was taken out; a field refers to it, one in it to a table in it.
    auto* gone = new SQLSubquerySourceComponent;
    auto* statement = new SQLSelectStmtComponent;
    auto* table = new SQLIdentifierSourceComponent;
    auto* innermost = new SQLFieldColumnComponent;
    gone->subquery = statement;
    statement->sourceExpr->root = Sample::leaf(table);
    statement->selectColumnExpr->columns = {innermost};
    innermost->source = table;
    whole.orphans.add(std::unique_ptr<AbstractQueryComponent>(gone));
    whole.field->source = table;
    whole.ordered->source = gone;
    whole.innerField->referencedColumn = innermost;

    const std::string record = recordStatement(whole.statement);
    RestoredStatement restored = restoreStatement(record);
    ASSERT_TRUE(restored.statement);
    EXPECT_EQ(restored.detached.size(), 2U);
    EXPECT_EQ(recordStatement(*restored.statement), record);
}

TEST(StatementRecord, AnyDepthIsWalkedByLoops) {
    constexpr int depth = 100'000;
    Sample sample;
    sample.statement.havingExpr->root = deepConditions(depth);
    auto** link = &sample.bracket->next;
    for (int i = 0; i < depth; ++i) {
        *link = new SQLConditionValueComponent;
        link = &(*link)->next;
        auto* join = new SourceNode;
        join->value = new SQLJoinSourceNodeComponent;
        join->left = std::exchange(sample.statement.sourceExpr->root, join);
        join->right = Sample::leaf(new SQLIdentifierSourceComponent);
    }
    const std::string record = recordStatement(sample.statement);
    const RestoredStatement restored = restoreStatement(record);
    ASSERT_TRUE(restored.statement);
    EXPECT_TRUE(recordStatement(*restored.statement) == record);
}

TEST(StatementRecord, OtherBytesGiveNothing) {
    Whole whole;
    const std::string record = recordStatement(whole.statement);
    const long id = whole.a->id();
    std::vector<std::string> others = {"", "SELECT 1", record + '\0', record + record};
    for (std::size_t length = 0; length < record.size(); ++length)
        others.push_back(record.substr(0, length));
    for (const std::string& other : others)
        EXPECT_FALSE(restoreStatement(other).statement) << other.size();
    // What is still a record, of something else, may be restored; nothing else may happen.
    for (std::size_t at = 0; at < record.size(); ++at) {
        for (const char byte : {'\0', '\1', '\x7f', '\xff'}) {
            std::string changed = record;
            changed[at] = byte;
            const RestoredStatement restored = restoreStatement(changed);
            if (!restored.statement) continue;
            EXPECT_TRUE(restoreStatement(recordStatement(*restored.statement)).statement);
        }
    }
    EXPECT_TRUE(isAlive(id));
}
