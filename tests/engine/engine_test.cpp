#include "engine/engine.h"

#include "engine/main_thread_call.h"
#include "model/notification_names.h"
#include "recording_engine.h"

using namespace QB;
using namespace QB::Test;
using namespace QB::Component::SQL;

namespace {
const std::string layerChanged = Notification::topLevelQueryComponentLayerChanged;
const std::string modified = Notification::topLevelQueryComponentElementModified;
}  // namespace

// ---- server -----------------------------------------------------------------------------------

TEST_F(EngineTest, BeforeAServerIsKnownThereIsNoLayerAndNoText) {
    EXPECT_EQ(engine->databaseType(), DatabaseTypeNone);
    EXPECT_EQ(engine->currentTopLevelQueryComponentLayer(), -1);
    EXPECT_EQ(engine->currentTopLevelQueryComponent(), nullptr);
    EXPECT_EQ(engine->createTopLevelQueryComponentForCurrentDatabase(), nullptr);
    EXPECT_EQ(engine->generateTopLevelQueryComponentRootLayerName(), "(Root)");
    EXPECT_EQ(engine->buildQuery(), "");
    EXPECT_FALSE(engine->isParsingQuery());
    EXPECT_TRUE(engine->findAllIdentifierRefreshPathInCurrentQueryLevel().empty());
}

TEST_F(EngineTest, ANewServerBringsANewRootAndSaysWhatDiffers) {
    engine->setDatabaseInfo(DatabaseTypeMySQL, 80036);
    ASSERT_EQ(engine->notices.size(), 2U);
    EXPECT_EQ(engine->notices[0].name, layerChanged);
    EXPECT_FALSE(engine->notices[0].hasParameters);
    EXPECT_EQ(engine->notices[1].name, Notification::databaseServerChanged);
    EXPECT_EQ(engine->notices[1].parameters.at("dbTypeChanged").toInt(), 1);
    EXPECT_EQ(engine->topLevelQueryComponentLayerName(0), "(Main query)");
    const long earlier = engine->topLevelQueryComponent(0)->id();
    engine->notices.clear();

    engine->setDatabaseInfo(DatabaseTypeMySQL, 80037);
    EXPECT_EQ(engine->notices.back().parameters.at("dbTypeChanged").toInt(), 0);
    EXPECT_EQ(engine->notices.back().parameters.at("dbVersionChanged").toInt(), 1);
    EXPECT_FALSE(isAlive(earlier));
    engine->notices.clear();

    engine->setDatabaseInfo(DatabaseTypeMySQL, 80037);
    EXPECT_TRUE(engine->notices.empty());
}

TEST_F(EngineTest, AFamilyWithoutStatementModelHasARootLayerWithoutStatement) {
    engine->setDatabaseInfo(DatabaseTypeMongoDB, 5);
    EXPECT_EQ(engine->currentTopLevelQueryComponentLayer(), 0);
    EXPECT_EQ(engine->topLevelQueryComponent(0), nullptr);
    EXPECT_EQ(engine->topLevelQueryComponentLayerName(0), "(Root)");
    EXPECT_EQ(engine->modify_obtainElement(ElementSource, 0), nullptr);
    EXPECT_EQ(engine->buildQuery(), "");
    EXPECT_TRUE(engine->findAllIdentifierRefreshPathInCurrentQueryLevel().empty());
}

TEST_F(EngineTest, AnotherServerFreesTheWholeOldStatementAlsoWithALayerOpen) {
    engine->setDatabaseInfo(DatabaseTypeSQLite, 1);
    auto* root = static_cast<SQLSelectStmtComponent*>(engine->topLevelQueryComponent(0));
    auto* derived = new SQLSubquerySourceComponent;
    auto* inner = new SQLSelectStmtComponent;
    derived->subquery = inner;
    root->sourceExpr->root = new SourceNode;
    root->sourceExpr->root->value = derived;
    inner->whereExpr->root = new SQLConditionValueComponent;
    engine->pushNewLayerTopLevelQueryComponent(inner, "sub");
    engine->setDatabaseInfo(DatabaseTypeOracle, 1);  // the leak and address checks see the rest
    EXPECT_EQ(engine->currentTopLevelQueryComponentLayer(), 0);
}

TEST_F(EngineTest, OnlyASchemaThatDiffersIsAnnounced) {
    engine->setCurrentSchema("s");
    engine->setCurrentSchema("s");
    EXPECT_EQ(engine->currentSchema(), "s");
    EXPECT_FALSE(engine->notices.at(0).hasParameters);
    EXPECT_EQ(engine->takeNames(), Names{Notification::currentSchemaChanged});
}

// ---- layers -----------------------------------------------------------------------------------

TEST_F(StatementTest, AClosedLayerKeepsItsEditsAndIsNamedInTheNotification) {
    SQLSelectStmtComponent inner;
    engine->pushNewLayerTopLevelQueryComponent(&inner, "sub");
    EXPECT_FALSE(engine->notices.back().hasParameters);
    EXPECT_EQ(engine->currentTopLevelQueryComponent(), &inner);
    EXPECT_EQ(engine->topLevelQueryComponentLayerName(1), "sub");
    engine->modifyInTopLevelQueryComponentElement<ELEMSQLLimitExpr*>(
        ElementLimit, 1,
        [](ELEMSQLLimitExpr* limit) {
            limit->rowCount = 5;
            return true;
        },
        nullptr);
    engine->popCurrentLayerTopLevelQueryComponent();
    EXPECT_EQ(inner.limitExpr->rowCount, 5);
    EXPECT_EQ(engine->notices.back().parameters.at("poppedLayer").toPointer(), &inner);
    EXPECT_EQ(engine->currentTopLevelQueryComponent(), root());
}

TEST_F(StatementTest, TheRootCannotBePoppedNorAnythingFromAnEmptyStack) {
    const std::string text = "popCurrentLayerTopLevelQueryComponent: You cannot pop the root layer";
    EXPECT_EQ(protocolErrorOf([&] { engine->popCurrentLayerTopLevelQueryComponent(); }), text);
    const OwnedEngine<RecordingEngine> empty;
    EXPECT_EQ(protocolErrorOf([&] { empty->popCurrentLayerTopLevelQueryComponent(); }), text);
    EXPECT_TRUE(engine->notices.empty());
}

TEST_F(StatementTest, ResetPopsToTheRootAndOnlyThenTellsTheWidgets) {
    SQLSelectStmtComponent first;
    SQLSelectStmtComponent second;
    engine->resetUi();
    EXPECT_EQ(engine->takeNames(), Names{Notification::uiReset});
    engine->pushNewLayerTopLevelQueryComponent(&first, "1");
    engine->pushNewLayerTopLevelQueryComponent(&second, "2");
    engine->notices.clear();
    engine->resetUi();
    EXPECT_EQ(engine->takeNames(), (Names{layerChanged, layerChanged, Notification::uiReset}));
    EXPECT_EQ(engine->currentTopLevelQueryComponent(), root());
}

// ---- modifications ----------------------------------------------------------------------------

TEST_F(StatementTest, AChangeIsAnnouncedWithElementLayerAndSenderAfterTheLockIsFree) {
    int sender = 0;
    bool couldOtherThreadLock = false;
    engine->registerNotifyChangeListener(modified, [&](const std::string&, const auto*) {
        std::thread([&] {
            couldOtherThreadLock = engine->queryComponentAccessMutex().try_lock();
            if (couldOtherThreadLock) engine->queryComponentAccessMutex().unlock();
        }).join();
    });
    engine->modifyInTopLevelQueryComponentElement<ELEMSQLConditionExpr*>(
        ElementHaving, 0,
        [&](ELEMSQLConditionExpr* element) {
            EXPECT_EQ(element, root()->havingExpr);
            EXPECT_TRUE(engine->notices.empty());
            return true;
        },
        &sender);
    EXPECT_TRUE(couldOtherThreadLock);
    ASSERT_EQ(engine->notices.size(), 1U);
    const QBNotificationParameters& params = engine->notices[0].parameters;
    EXPECT_EQ(engine->notices[0].name, modified);
    EXPECT_EQ(params.at("layer").toInt(), 0);
    EXPECT_EQ(params.at("sender").toPointer(), &sender);
    EXPECT_EQ(params.at("elements.size").toInt(), 1);
    EXPECT_EQ(params.at("elements[0]").toInt(), ElementHaving);
}

TEST_F(StatementTest, ABlockThatChangedNothingIsNotAnnounced) {
    engine->modifyInTopLevelQueryComponentElement<ELEMSQLLimitExpr*>(
        ElementLimit, 0, [](ELEMSQLLimitExpr*) { return false; }, nullptr);
    EXPECT_TRUE(engine->notices.empty());
}

TEST_F(StatementTest, AnElementOfAnotherKindOrPlaceIsReportedAndTheBlockDoesNotRun) {
    int runs = 0;
    const auto count = [&runs](auto*) {
        return ++runs > 0;
    };
    const std::string text = "Inconsistent component requested";
    const auto output = [&](const std::function<void()>& modify) {
        ::testing::internal::CaptureStderr();
        modify();
        return ::testing::internal::GetCapturedStderr().substr(0, text.size());
    };
    EXPECT_EQ(output([&] {
                  engine->modifyInTopLevelQueryComponentElement<ELEMSQLColumnExpr*>(
                      ElementSelectColumn, 0, count, nullptr);
              }),
              text);
    for (const int layer : {-1, 1}) {
        EXPECT_EQ(output([&] {
                      engine->modifyInTopLevelQueryComponentElement<ELEMSQLSourceExpr*>(
                          ElementSource, layer, count, nullptr);
                  }),
                  text);
    }
    EXPECT_EQ(runs, 0);
    EXPECT_TRUE(engine->notices.empty());
}

TEST_F(StatementTest, ABlockMayTakeAnyElementByItsBaseOrUntyped) {
    std::vector<void*> seen;
    for (const auto element : {ElementSelectColumn, ElementWhere, ElementLimit}) {
        engine->modifyInTopLevelQueryComponentElement<void*>(
            element, 0,
            [&](void* e) {
                seen.push_back(e);
                return false;
            },
            nullptr);
        engine->modifyInTopLevelQueryComponentElement<ELEMAbstractTopLevelQueryExpr*>(
            element, 0, [&](ELEMAbstractTopLevelQueryExpr* e) { return e != seen.back(); },
            nullptr);
    }
    EXPECT_EQ(seen,
              (std::vector<void*>{root()->selectColumnExpr, root()->whereExpr, root()->limitExpr}));
    EXPECT_TRUE(engine->notices.empty());
}

TEST_F(StatementTest, AnEmptyBlockIsAnErrorAndAThrowingOneFreesTheLock) {
    EXPECT_EQ(protocolErrorOf([&] {
                  engine->modifyInTopLevelQueryComponentElement<void*>(ElementWhere, 0, nullptr,
                                                                       nullptr);
              }),
              "No modification block");
    const auto fail = [](void*) -> bool {
        throw std::runtime_error("seeded");
    };
    EXPECT_THROW(
        engine->modifyInTopLevelQueryComponentElement<void*>(ElementWhere, 0, fail, nullptr),
        std::runtime_error);
    std::thread([&] {
        ASSERT_TRUE(engine->queryComponentAccessMutex().try_lock());
        engine->queryComponentAccessMutex().unlock();
    }).join();
    EXPECT_TRUE(engine->notices.empty());
}

TEST_F(StatementTest, FromTheFirstTableToTheText) {
    auto* table = setTable("film");
    engine->modifyInTopLevelQueryComponentElement<ELEMSQLSelectColumnExpr*>(
        ElementSelectColumn, 0,
        [table](ELEMSQLSelectColumnExpr* element) {
            auto* column = new SQLFieldColumnComponent;
            column->source = table;
            column->isAsterisk = true;
            element->columns.push_back(column);
            return true;
        },
        nullptr);
    SQLSelectStmtComponent inner;
    engine->pushNewLayerTopLevelQueryComponent(&inner, "sub");
    const std::string text = engine->buildQuery();  // of the root, whatever layer is current
    EXPECT_NE(text.find("`film`"), std::string::npos) << text;
    EXPECT_NE(text.find('*'), std::string::npos) << text;
    engine->popCurrentLayerTopLevelQueryComponent();
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

// ---- paths to refresh -------------------------------------------------------------------------

TEST_F(StatementTest, TheTablesOfTheCurrentLayerGiveThePathsToRefreshInTextOrder) {
    setTable("b")->path = {"catalog", "schema"};
    auto* table = new SQLIdentifierSourceComponent;
    table->name = "a";
    auto* join = new SourceNode;
    join->value = new SQLJoinSourceNodeComponent;
    join->left = root()->sourceExpr->root;
    join->right = new SourceNode;
    join->right->value = table;
    root()->sourceExpr->root = join;
    engine->setCurrentSchema("main");
    using Paths = std::vector<std::vector<std::string>>;
    EXPECT_EQ(engine->findAllIdentifierRefreshPathInCurrentQueryLevel(),
              (Paths{{"schema", "b"}, {"main", "a"}}));
}
