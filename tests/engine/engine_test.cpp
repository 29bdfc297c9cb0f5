#include "engine/engine.h"

#include "recording_engine.h"

using namespace QB;
using namespace QB::Test;
using namespace QB::Component::SQL;

namespace {
const std::string layerChanged = Notification::topLevelQueryComponentLayerChanged;
const std::string modified = Notification::topLevelQueryComponentElementModified;
}  // namespace

// ---- server and layers ------------------------------------------------------------------------

TEST_F(StatementTest, OnlyAServerOrSchemaThatDiffersIsAnnouncedAndAServerFreesTheStatement) {
    const auto* earlier = root();
    const long id = earlier->id();
    engine->pushNewLayerTopLevelQueryComponent(setSubquery(), "sub");
    engine->notices.clear();
    engine->setDatabaseInfo(DatabaseTypeMySQL, 80037);
    EXPECT_FALSE(isAlive(id));  // the leak and address checks see the rest
    EXPECT_EQ(engine->currentTopLevelQueryComponentLayer(), 0);
    EXPECT_EQ(engine->topLevelQueryComponentLayerName(0), "(Main query)");
    ASSERT_EQ(engine->notices.size(), 2U);
    EXPECT_FALSE(engine->notices[0].hasParameters);
    EXPECT_EQ(engine->notices[1].parameters.at("dbTypeChanged").toInt(), 0);
    EXPECT_EQ(engine->notices[1].parameters.at("dbVersionChanged").toInt(), 1);
    EXPECT_EQ(engine->takeNames(), (Names{layerChanged, Notification::databaseServerChanged}));
    engine->setDatabaseInfo(DatabaseTypeMySQL, 80037);
    engine->setCurrentSchema("s");
    engine->setCurrentSchema("s");
    EXPECT_EQ(engine->takeNames(), Names{Notification::currentSchemaChanged});
}

TEST_F(StatementTest, AClosedLayerKeepsItsEditsAndIsNamedInTheNotificationButTheTextIsTheRoots) {
    auto* const inner = setSubquery();
    engine->pushNewLayerTopLevelQueryComponent(inner, "sub");
    EXPECT_FALSE(engine->notices.back().hasParameters);
    EXPECT_EQ(engine->currentTopLevelQueryComponent(), inner);
    EXPECT_EQ(engine->topLevelQueryComponentLayerName(1), "sub");
    const auto limit = [](ELEMSQLLimitExpr* element) {
        element->rowCount = 5;
        return true;
    };
    modify<ELEMSQLLimitExpr>(ElementLimit, limit, 1);
    EXPECT_NE(engine->buildQuery().find("`derived`"), std::string::npos) << engine->buildQuery();
    engine->popCurrentLayerTopLevelQueryComponent();
    EXPECT_EQ(inner->limitExpr->rowCount, 5);
    EXPECT_EQ(engine->notices.back().parameters.at("poppedLayer").toPointer(), inner);
    EXPECT_EQ(engine->currentTopLevelQueryComponent(), root());
}

TEST_F(StatementTest, ResetPopsToTheRootWhichCannotBePoppedAndOnlyThenTellsTheWidgets) {
    SQLSelectStmtComponent inner;
    engine->pushNewLayerTopLevelQueryComponent(&inner, "1");
    engine->pushNewLayerTopLevelQueryComponent(&inner, "2");
    engine->notices.clear();
    engine->resetUi();
    EXPECT_EQ(engine->takeNames(), (Names{layerChanged, layerChanged, Notification::uiReset}));
    const OwnedEngine<RecordingEngine> empty;
    for (RecordingEngine* rootless : {engine.get(), empty.get()}) {
        EXPECT_EQ(protocolErrorOf([&] { rootless->popCurrentLayerTopLevelQueryComponent(); }),
                  "popCurrentLayerTopLevelQueryComponent: You cannot pop the root layer");
        EXPECT_TRUE(rootless->notices.empty());
    }
}

// ---- modifications ----------------------------------------------------------------------------

TEST_F(StatementTest, AChangeIsAnnouncedWithElementLayerAndSenderAfterTheLockIsFree) {
    int sender = 0;
    bool wasFree = false;
    engine->registerNotifyChangeListener(modified, [&](const std::string&, const auto*) {
        wasFree = isFree(engine->queryComponentAccessMutex());
    });
    const auto block = [&](ELEMSQLConditionExpr* element) {
        EXPECT_EQ(element, root()->havingExpr);
        EXPECT_FALSE(isFree(engine->queryComponentAccessMutex()));
        EXPECT_TRUE(engine->notices.empty());
        return true;
    };
    modify<ELEMSQLConditionExpr>(ElementHaving, block, 0, &sender);
    EXPECT_TRUE(wasFree);
    ASSERT_EQ(engine->notices.size(), 1U);
    const QBNotificationParameters& params = engine->notices[0].parameters;
    EXPECT_EQ(params.at("layer").toInt(), 0);
    EXPECT_EQ(params.at("sender").toPointer(), &sender);
    EXPECT_EQ(params.at("elements.size").toInt(), 1);
    EXPECT_EQ(params.at("elements[0]").toInt(), ElementHaving);
}

TEST_F(StatementTest, AnEmptyBlockIsAnErrorAndAThrowingOneFreesTheLock) {
    EXPECT_EQ(protocolErrorOf([&] { modify(ElementWhere, nullptr); }), "No modification block");
    const auto fail = [](void*) -> bool {
        throw std::runtime_error("seeded");
    };
    EXPECT_THROW(modify(ElementWhere, fail), std::runtime_error);
    EXPECT_TRUE(isFree(engine->queryComponentAccessMutex()));
    EXPECT_TRUE(engine->notices.empty());
}

TEST_F(StatementTest, AChangeOnAWorkerIsAnnouncedOnTheMainThreadOnlyWhileTheEngineLives) {
    std::thread([&] { setTable("film"); }).join();
    EXPECT_TRUE(engine->notices.empty());
    host.runPending();
    EXPECT_EQ(engine->takeNames(), Names{modified});
    std::thread([&] { engine->modify_notify(ElementSource, 0, nullptr); }).join();
    engine.destroy();
    host.runPending();  // touches nothing: the address check sees the rest
}

TEST_F(StatementTest, TheTablesOfTheCurrentLayerGiveThePathsToRefreshInTextOrder) {
    setTable("b")->path = {"catalog", "schema"};
    auto* join = new SourceNode;
    join->value = new SQLJoinSourceNodeComponent;
    join->left = root()->sourceExpr->root;
    setTable("a");
    join->right = std::exchange(root()->sourceExpr->root, join);
    engine->setCurrentSchema("main");
    using Paths = std::vector<std::vector<std::string>>;
    EXPECT_EQ(engine->findAllIdentifierRefreshPathInCurrentQueryLevel(),
              (Paths{{"schema", "b"}, {"main", "a"}}));
}

// ---- calls to the main thread -----------------------------------------------------------------

TEST_F(EngineTest, ACallSaysWhetherItsClosureRanThoughTheHostDropsOrKeepsIt) {
    bool hasRun = false;
    EXPECT_TRUE(callOnMainThread(engine->id(), [&hasRun] { hasRun = true; }));
    EXPECT_TRUE(hasRun);
    EXPECT_FALSE(callOnMainThread(-1, [] { ADD_FAILURE(); }));
    Callback::runOperationOnMainThread = [](std::function<void()>) {
    };
    EXPECT_FALSE(callOnMainThread(engine->id(), [] { ADD_FAILURE(); }));
    static std::vector<std::function<void()>> kept;
    Callback::runOperationOnMainThread = [](std::function<void()> f) {
        f();
        kept.push_back(std::move(f));
    };
    EXPECT_TRUE(callOnMainThread(engine->id(), [] {}));
    kept.clear();
}

TEST_F(EngineTest, ACallReturnsWhenItsClosureThrows) {
    auto wasRun = std::async(std::launch::async, [&] {
        return callOnMainThread(engine->id(), [] { throw std::runtime_error("seeded"); });
    });
    for (bool hasThrown = false; !hasThrown;) {
        try {
            host.runPending();
        } catch (const std::runtime_error&) {
            hasThrown = true;
        }
    }
    EXPECT_FALSE(wasRun.get());
}
