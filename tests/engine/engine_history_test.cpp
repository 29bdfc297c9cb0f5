#include "model/dump.h"
#include "model/statement_record.h"
#include "recording_engine.h"

using namespace QB;
using namespace QB::Test;
using namespace QB::Component::SQL;

namespace {

const std::string layers = Notification::topLevelQueryComponentLayerChanged;
const std::string modified = Notification::topLevelQueryComponentElementModified;

class EngineHistoryTest : public StatementTest {
protected:
    SQLSelectStmtComponent* open() {
        auto* inner = setSubquery();
        engine->pushNewLayerTopLevelQueryComponent(inner, "derived");
        engine->notices.clear();
        return inner;
    }

    SQLSelectStmtComponent* current() const {
        return static_cast<SQLSelectStmtComponent*>(engine->currentTopLevelQueryComponent());
    }

    void addColumn(int layer) {
        modify<ELEMSQLSelectColumnExpr>(
            ElementSelectColumn,
            [](ELEMSQLSelectColumnExpr* element) {
                element->columns.push_back(new SQLFieldColumnComponent);
                return true;
            },
            layer);
    }

    void removeSource() {
        modify<ELEMSQLSourceExpr>(ElementSource, [this](ELEMSQLSourceExpr* element) {
            DetachedParts parts;
            parts.add(std::unique_ptr<SourceNode>(std::exchange(element->root, nullptr)));
            engine->retire(std::move(parts));
            return true;
        });
    }

    std::size_t retired() const { return engine->core()->retired.size(); }
};

}  // namespace

TEST_F(EngineHistoryTest, TheQueryComesBackWithItsLayersAtOtherAddresses) {
    const auto* const inner = open();
    const long id = inner->id();
    addColumn(1);
    const std::string record = engine->recordQuery();
    const std::string dump = dumpStatement(root());
    const std::vector<long> path = engine->layerPath();
    ASSERT_EQ(path.size(), 1U);
    engine->popCurrentLayerTopLevelQueryComponent();
    removeSource();
    engine->notices.clear();

    int sender = 0;
    EXPECT_TRUE(engine->restoreQuery(record, path, &sender));
    EXPECT_EQ(engine->recordQuery(), record);
    EXPECT_EQ(dumpStatement(root()), dump);
    EXPECT_EQ(engine->layerPath(), path);
    EXPECT_EQ(current()->id(), id);
    EXPECT_EQ(engine->topLevelQueryComponentLayerName(1), "derived");
    ASSERT_EQ(engine->notices.size(), 2U);
    EXPECT_EQ(engine->notices[0].name, layers);
    EXPECT_FALSE(engine->notices[0].hasParameters);
    const QBNotificationParameters& told = engine->notices[1].parameters;
    EXPECT_EQ(told.at("elements.size").toInt(), 7);
    EXPECT_EQ(told.at("layer").toInt(), 1);
    EXPECT_EQ(told.at("sender").toPointer(), &sender);
    EXPECT_EQ(retired(), 0U);

    // The same layers once more, though they are other objects: told of the elements alone.
    engine->notices.clear();
    EXPECT_TRUE(engine->restoreQuery(record, path, nullptr));
    EXPECT_EQ(engine->takeNames(), Names{modified});
    // A path that leads further than the query does.
    EXPECT_TRUE(engine->restoreQuery(record, {path[0], path[0]}, nullptr));
    EXPECT_EQ(engine->layerPath(), path);
}

TEST_F(EngineHistoryTest, ARecordOfAnotherQueryChangesNothing) {
    setTable("city");
    const std::string record = engine->recordQuery();
    engine->setDatabaseInfo(DatabaseTypeSQLite, 1);
    const std::string present = engine->recordQuery();
    engine->notices.clear();
    for (const std::string& other : {record, std::string(), record.substr(1)})
        EXPECT_FALSE(engine->restoreQuery(other, {}, nullptr));
    EXPECT_EQ(engine->recordQuery(), present);
    EXPECT_TRUE(engine->notices.empty());
    engine->setDatabaseInfo(DatabaseTypeMongoDB, 1);
    EXPECT_EQ(engine->recordQuery(), "");
    EXPECT_FALSE(engine->restoreQuery(present, {}, nullptr));
}

TEST_F(EngineHistoryTest, WhoIsToldMayEndTheEngine) {
    for (const std::string& name : {layers, modified}) {
        SCOPED_TRACE(name);
        OwnedEngine<RecordingEngine> other(DatabaseTypeMySQL);
        const std::string record = other->recordQuery();
        auto* const inner = new SQLSelectStmtComponent;
        other->modifyInTopLevelQueryComponentElement<ELEMSQLSourceExpr*>(
            ElementSource, 0,
            [inner](ELEMSQLSourceExpr* element) {
                auto* const derived = new SQLSubquerySourceComponent;
                derived->subquery = inner;
                element->root = new SourceNode;
                element->root->value = derived;
                return true;
            },
            nullptr);
        other->pushNewLayerTopLevelQueryComponent(inner, "inner");
        other->registerNotifyChangeListener(
            name, [&](const std::string&, const auto*) { other.destroy(); });
        EXPECT_TRUE(other->restoreQuery(record, {}, nullptr));
    }
}

TEST_F(EngineHistoryTest, AParseThatIsUnderWayFindsItsStatementWhereItIsThen) {
    open();
    const std::string record = engine->recordQuery();
    const std::vector<long> path = engine->layerPath();
    engine->registerIdentifierCandidateChildrenUpdater([](auto*, auto*) {});
    static std::promise<void> posted;  // by the worker, which then waits for this thread
    static std::once_flag isPosted;
    static const auto post = Callback::runOperationOnMainThread;
    Callback::runOperationOnMainThread = [](std::function<void()> call) {
        post(std::move(call));
        std::call_once(isPosted, [] { posted.set_value(); });
    };
    engine->parseQuery("SELECT a FROM t", nullptr);
    posted.get_future().wait();
    EXPECT_TRUE(engine->restoreQuery(record, path, nullptr));
    host.finishWorkers();
    EXPECT_EQ(dumpStatement(current()),
              "statement\n  select\n    field \"a\"\n  from\n    table \"t\"\n");
    EXPECT_EQ(retired(), 0U);
}

TEST_F(EngineHistoryTest, WhatFollowsSaysSo) {
    OwnedEngine<RecordingEngine> other(DatabaseTypeMySQL);
    const auto followsUp = [this] {
        engine->notices.clear();
        addColumn(0);
        const auto& parameters = engine->notices.back().parameters;
        const auto found = parameters.find("followsUp");
        return found == parameters.end() ? -1 : found->second.toInt();
    };
    const unsigned long count = engine->userModificationCount();
    for (const bool isNext : {true, false}) {
        {
            const QBEngine::FollowUp followUp(engine.get(), count);
            const QBEngine::FollowUp inner(other.get());
            EXPECT_EQ(followsUp(), isNext);
            const QBEngine::FollowUp repair(engine.get());
            EXPECT_EQ(followsUp(), true);
        }
        const QBEngine::FollowUp followUp(other.get());
        EXPECT_EQ(followsUp(), -1);
    }
}
