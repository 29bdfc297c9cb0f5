#include "engine/retired_parts.h"

#include "recording_engine.h"

using namespace QB;
using namespace QB::Test;
using namespace QB::Component::SQL;

namespace {

/// A new component as a part by itself, and its id.
std::pair<DetachedParts, long> makePart() {
    auto component = std::make_unique<SQLAnyExpressionColumnComponent>();
    const long id = component->id();
    DetachedParts parts;
    parts.add(std::move(component));
    return {std::move(parts), id};
}

}  // namespace

/// Blocks that retire, and columns that refer to what they retired.
class RetiredTest : public StatementTest {
protected:
    /// Retires a new component in a block of its own and gives its id.
    long retireOne(bool isChange = true) {
        long id = 0;
        modify(ElementWhere, [&](void*) {
            id = retirePart();
            return isChange;
        });
        return id;
    }

    long retirePart() {
        auto [parts, id] = makePart();
        engine->retire(std::move(parts));
        return id;
    }

    /// Takes the table out of FROM, as an edit does.
    long retireTable() {
        const long id = root()->sourceExpr->root->value->id();
        modify<ELEMSQLSourceExpr>(ElementSource, [this](ELEMSQLSourceExpr* element) {
            DetachedParts parts;
            parts.add(std::unique_ptr<SourceNode>(std::exchange(element->root, nullptr)));
            engine->retire(std::move(parts));
            return true;
        });
        return id;
    }

    SQLIdentifierSourceComponent* setTableWithColumn() {
        auto* const table = setTable("film");
        auto* column = new SQLFieldColumnComponent;
        column->source = table;
        root()->selectColumnExpr->columns.push_back(column);
        return table;
    }

    std::size_t retiredCount() const { return engine->core()->retired.size(); }
};

TEST_F(RetiredTest, APartStaysWhileAColumnOfTheStatementPointsAtIt) {
    const auto* const table = setTableWithColumn();
    const long id = retireTable();
    EXPECT_TRUE(isAlive(id));
    EXPECT_EQ(table->name, "film");  // what a text generation would read
    modify<ELEMSQLSelectColumnExpr>(ElementSelectColumn, [&](ELEMSQLSelectColumnExpr* element) {
        DetachedParts parts;
        parts.add(std::unique_ptr<SQLAbstractColumnComponent>(element->columns.back()));
        element->columns.pop_back();
        engine->retire(std::move(parts));
        return true;
    });
    EXPECT_FALSE(isAlive(id));
    EXPECT_EQ(retiredCount(), 0U);
}

TEST_F(RetiredTest, ASubqueryStaysWhileItsLayerIsOpen) {
    engine->pushNewLayerTopLevelQueryComponent(setSubquery(), "sub");
    const long id = retireTable();
    EXPECT_TRUE(isAlive(id));
    engine->popCurrentLayerTopLevelQueryComponent();
    retireOne();
    EXPECT_FALSE(isAlive(id));
}

TEST_F(RetiredTest, ADeliveryFreesOnlyWhatItsOwnModificationRetiredAndNotBeforeItsEnd) {
    using Seen = std::vector<std::pair<bool, bool>>;
    Seen seen;
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
    host.runPending();
    EXPECT_EQ(seen, (Seen{{true, true}, {true, true}, {false, true}}));
    EXPECT_EQ(retiredCount(), 0U);
}

TEST_F(RetiredTest, AnInnerOrUnannouncedModificationFreesNothingBeforeTheNextDelivery) {
    const long unannounced = retireOne(false);
    EXPECT_TRUE(isAlive(unannounced));
    long outer = 0;
    long inner = 0;
    modify(ElementWhere, [&](void*) {
        outer = retirePart();
        inner = retireOne();
        EXPECT_TRUE(isAlive(outer) && isAlive(inner));
        return true;
    });
    EXPECT_FALSE(isAlive(outer) || isAlive(inner) || isAlive(unannounced));
}

TEST_F(RetiredTest, AWorkerReadsAStatementOnlyWhileItIsThereAndTheRestGoesWithTheLastTask) {
    setTableWithColumn();
    const long id = retireTable();
    auto core = engine->core();
    const long statementId = root()->id();
    EXPECT_TRUE(core->withLiveComponent(
        statementId, [&core] { EXPECT_FALSE(isFree(core->queryComponentAccessMutex)); }));
    engine.destroy();
    EXPECT_TRUE(isAlive(id));
    EXPECT_FALSE(core->withLiveComponent(statementId, [] { ADD_FAILURE(); }));
    core.reset();
    EXPECT_FALSE(isAlive(id));
}

TEST(RetiredParts, TheStatementIsScannedOnlyWhenSomethingNewMayBeFreed) {
    RetiredParts retired;
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
    auto* const referenced = new SQLAnyExpressionColumnComponent;
    DetachedParts part;
    part.add(std::unique_ptr<Component::AbstractQueryComponent>(referenced));
    EXPECT_TRUE(deliver(std::move(part)));
    retired.sweep([&] { return DetachedParts::References{referenced}; });
    EXPECT_EQ(retired.size(), 1U);
    EXPECT_FALSE(deliver({}));  // a part that has to stay does not make every edit linear
    EXPECT_TRUE(deliver(makePart().first));
    retired.sweep([] { return DetachedParts::References(); });
    EXPECT_EQ(retired.size(), 0U);
}
