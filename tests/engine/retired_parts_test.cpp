#include "engine/retired_parts.h"

#include <gtest/gtest.h>

#include <future>

#include "engine/main_thread_call.h"
#include "model/notification_names.h"
#include "recording_engine.h"

using namespace QB;
using namespace QB::Test;
using namespace QB::Component::SQL;

namespace {

DetachedParts partOf(std::unique_ptr<Component::AbstractQueryComponent> component) {
    DetachedParts parts;
    parts.add(std::move(component));
    return parts;
}

}  // namespace

/// Blocks that retire, and columns that refer to what they retired.
class RetiredTest : public StatementTest {
protected:
    using Block = std::function<bool(ELEMSQLSelectColumnExpr*)>;

    void modify(const Block& block) {
        engine->modifyInTopLevelQueryComponentElement<ELEMSQLSelectColumnExpr*>(ElementSelectColumn,
                                                                                0, block, nullptr);
    }

    /// Retires a new component in a block of its own and gives its id.
    long retireOne(bool isChange = true) {
        auto component = std::make_unique<SQLAnyExpressionColumnComponent>();
        const long id = component->id();
        modify([&](auto*) {
            engine->retire(partOf(std::move(component)));
            return isChange;
        });
        return id;
    }

    /// Takes the table out of FROM, as an edit does.
    long retireTable() {
        long id = 0;
        engine->modifyInTopLevelQueryComponentElement<ELEMSQLSourceExpr*>(
            ElementSource, 0,
            [&](ELEMSQLSourceExpr* element) {
                id = element->root->value->id();
                DetachedParts parts;
                parts.add(std::unique_ptr<SourceNode>(std::exchange(element->root, nullptr)));
                engine->retire(std::move(parts));
                return true;
            },
            nullptr);
        return id;
    }

    void addColumnOf(SQLAbstractSourceComponent* source) {
        modify([source](ELEMSQLSelectColumnExpr* element) {
            auto* column = new SQLFieldColumnComponent;
            column->source = source;
            element->columns.push_back(column);
            return true;
        });
    }

    std::size_t retiredCount() const { return engine->core()->retired.size(); }
};

TEST_F(RetiredTest, APartIsThereWhileItsNotificationIsDeliveredAndGoneAfterwards) {
    long id = 0;
    bool wasAlive = false;
    auto component = std::make_unique<SQLAnyExpressionColumnComponent>();
    id = component->id();
    engine->registerNotifyChangeListener(
        Notification::topLevelQueryComponentElementModified,
        [&](const std::string&, const auto*) { wasAlive = isAlive(id); });
    modify([&](auto*) {
        engine->retire(partOf(std::move(component)));
        return true;
    });
    EXPECT_TRUE(wasAlive);
    EXPECT_FALSE(isAlive(id));
}

TEST_F(RetiredTest, APartStaysWhileAColumnOfTheStatementPointsAtIt) {
    SQLIdentifierSourceComponent* const table = setTable("film");
    addColumnOf(table);
    const long id = retireTable();
    EXPECT_TRUE(isAlive(id));
    EXPECT_EQ(table->name, "film");  // what a text generation would read
    modify([&](ELEMSQLSelectColumnExpr* element) {
        std::unique_ptr<SQLAbstractColumnComponent> column(element->columns.back());
        element->columns.pop_back();
        engine->retire(partOf(std::move(column)));
        return true;
    });
    EXPECT_FALSE(isAlive(id));
    EXPECT_EQ(retiredCount(), 0U);
}

TEST_F(RetiredTest, ASubqueryStaysWhileItsLayerIsOpen) {
    engine->modifyInTopLevelQueryComponentElement<ELEMSQLSourceExpr*>(
        ElementSource, 0,
        [](ELEMSQLSourceExpr* element) {
            auto* derived = new SQLSubquerySourceComponent;
            auto* inner = new SQLSelectStmtComponent;
            derived->subquery = inner;
            inner->whereExpr->root = new SQLConditionValueComponent;
            element->root = new SourceNode;
            element->root->value = derived;
            return true;
        },
        nullptr);
    auto* const inner =
        static_cast<SQLSubquerySourceComponent*>(root()->sourceExpr->root->value)->subquery;
    engine->pushNewLayerTopLevelQueryComponent(inner, "sub");
    const long id = retireTable();
    EXPECT_TRUE(isAlive(id));
    engine->popCurrentLayerTopLevelQueryComponent();
    retireOne();
    EXPECT_FALSE(isAlive(id));
}

TEST_F(RetiredTest, ADeliveryFreesOnlyWhatItsOwnModificationRetired) {
    std::vector<std::pair<bool, bool>> seen;
    long first = 0;
    long second = 0;
    engine->registerNotifyChangeListener(Notification::topLevelQueryComponentElementModified,
                                         [&](const std::string&, const auto*) {
                                             seen.emplace_back(isAlive(first), isAlive(second));
                                         });
    std::thread([&] {
        first = retireOne();
        second = retireOne();
    }).join();
    const long third = retireOne();  // delivered at once, before the two
    EXPECT_FALSE(isAlive(third));
    EXPECT_TRUE(isAlive(first));
    host.runPending();
    using Seen = std::vector<std::pair<bool, bool>>;
    EXPECT_EQ(seen, (Seen{{true, true}, {true, true}, {false, true}}));
    EXPECT_EQ(retiredCount(), 0U);
}

TEST_F(RetiredTest, WhatAnUnannouncedBlockRetiredGoesWithTheNextDelivery) {
    const long id = retireOne(false);
    EXPECT_TRUE(isAlive(id));
    modify([](auto*) { return true; });
    EXPECT_FALSE(isAlive(id));
}

TEST_F(RetiredTest, AnInnerModificationFreesNothingUnderItsOuterBlock) {
    long outer = 0;
    long inner = 0;
    modify([&](auto*) {
        auto component = std::make_unique<SQLAnyExpressionColumnComponent>();
        outer = component->id();
        engine->retire(partOf(std::move(component)));
        inner = retireOne();
        EXPECT_TRUE(isAlive(outer) && isAlive(inner));
        return true;
    });
    EXPECT_FALSE(isAlive(outer) || isAlive(inner));
}

TEST_F(RetiredTest, TheRestGoesWithTheEngineAndItsLastTask) {
    addColumnOf(setTable("film"));
    const long id = retireTable();
    auto core = engine->core();
    const long statementId = root()->id();
    engine.destroy();
    EXPECT_TRUE(isAlive(id));
    EXPECT_FALSE(core->withLiveComponent(statementId, [] { ADD_FAILURE(); }));
    core.reset();
    EXPECT_FALSE(isAlive(id));
}

TEST_F(RetiredTest, AWorkerReadsAStatementOnlyWhileItIsThere) {
    const auto core = engine->core();
    const long id = root()->id();
    bool isLocked = false;
    EXPECT_TRUE(core->withLiveComponent(id, [&] {
        isLocked =
            !std::async(std::launch::async, [&] {
                 const std::unique_lock lock(core->queryComponentAccessMutex, std::try_to_lock);
                 return lock.owns_lock();
             }).get();
    }));
    EXPECT_TRUE(isLocked);
    engine->setDatabaseInfo(DatabaseTypeSQLite, 1);
    EXPECT_FALSE(core->withLiveComponent(id, [] { ADD_FAILURE(); }));
}

TEST(RetiredParts, TheStatementIsScannedOnlyWhenSomethingNewMayBeFreed) {
    RetiredParts retired;
    SQLAnyExpressionColumnComponent* const referenced = new SQLAnyExpressionColumnComponent;
    const auto deliver = [&retired](DetachedParts parts) {
        RetiredParts::Number number = 0;
        {
            RetiredParts::Modification modification(retired);
            retired.add(std::move(parts));
            number = modification.announce();
        }
        return retired.markDelivered(number);
    };
    EXPECT_FALSE(deliver({}));
    EXPECT_TRUE(deliver(partOf(std::unique_ptr<Component::AbstractQueryComponent>(referenced))));
    retired.sweep([&] { return DetachedParts::References{referenced}; });
    EXPECT_EQ(retired.size(), 1U);
    EXPECT_FALSE(deliver({}));  // a part that has to stay does not make every edit linear
    EXPECT_TRUE(deliver(partOf(std::make_unique<SQLAnyExpressionColumnComponent>())));
    retired.sweep([] { return DetachedParts::References(); });
    EXPECT_EQ(retired.size(), 0U);
}
