#include "model/dump.h"
#include "recording_engine.h"

using namespace QB;
using namespace QB::Test;
using namespace QB::Component::SQL;

namespace {

const std::string modified = Notification::topLevelQueryComponentElementModified;
const std::string unsupported = Notification::parsingQueryUnsupported;

class ParseQueryTest : public StatementTest {
protected:
    ParseQueryTest() {
        engine->registerIdentifierCandidateChildrenUpdater([this](auto* accessor, auto* node) {
            fetched.push_back(node ? accessor->name(node) : "(root)");
            for (const char* const name : {"shop", "film", "rental"})
                accessor->setName(accessor->addChild(node), name);
        });
    }

    /// Parses to the end.
    void parse(const std::string& text) {
        engine->parseQuery(text, note());
        host.finishWorkers();
    }

    std::function<void(bool, QBRange)> note() {
        return [this](bool isRead, QBRange range) {
            outcomes.emplace_back(isRead, range);
        };
    }

    std::vector<std::pair<bool, QBRange>> outcomes;
    Names fetched;
};

}  // namespace

TEST_F(ParseQueryTest, AReadTextReplacesTheStatementAndIsToldInOrder) {
    engine->setCurrentSchema("shop");
    engine->notices.clear();
    const auto* const statement = root();
    Names order;
    engine->registerNotifyChangeListener(modified, [&](const std::string&, const auto* params) {
        order.push_back("modified");
        EXPECT_FALSE(engine->isParsingQuery());
        EXPECT_TRUE(isFree(engine->queryComponentAccessMutex()));
        EXPECT_EQ(params->at("layer").toInt(), 0);
        EXPECT_EQ(params->at("sender").toPointer(), static_cast<void*>(engine.get()));
        Names elements;
        for (int i = 0; i < params->at("elements.size").toInt(); ++i)
            elements.push_back(
                std::to_string(params->at("elements[" + std::to_string(i) + "]").toInt()));
        EXPECT_EQ(elements, (Names{"0", "1", "2", "3", "4", "6"}));
    });
    engine->parseQuery(" SELECT id FROM film;", [&](bool isRead, QBRange range) {
        order.push_back("completed");
        EXPECT_TRUE(engine->isParsingQuery());
        EXPECT_TRUE(isFree(engine->queryComponentAccessMutex()));
        EXPECT_TRUE(isRead);
        EXPECT_EQ(range, (QBRange{1, 19}));
    });
    EXPECT_TRUE(engine->isParsingQuery());
    EXPECT_TRUE(order.empty());
    host.finishWorkers();
    EXPECT_EQ(order, (Names{"completed", "modified"}));
    EXPECT_EQ(root(), statement);
    EXPECT_EQ(engine->buildQuery(), "SELECT\n\t`id`\nFROM\n\t`film`");
    EXPECT_EQ(fetched, (Names{"(root)", "shop", "film"}));
    EXPECT_EQ(engine->takeNames().front(), modified);
}

TEST_F(ParseQueryTest, ATextThatCannotBeReadEmptiesTheStatementAndIsReported) {
    setTable("film");
    engine->notices.clear();
    parse("SELECT * FORM film");
    ASSERT_EQ(outcomes.size(), 1U);
    EXPECT_FALSE(outcomes[0].first);
    EXPECT_EQ(outcomes[0].second, (QBRange{-1, 0}));
    EXPECT_EQ(dumpStatement(root()), "statement\n  select\n");
    ASSERT_EQ(engine->notices.size(), 2U);
    const std::string message = engine->notices[1].parameters.at("message").toString();
    EXPECT_NE(message.find("line 1, column 15"), std::string::npos) << message;
    EXPECT_EQ(engine->takeNames(), (Names{modified, unsupported}));
    EXPECT_TRUE(fetched.empty());
    parse("");
    EXPECT_TRUE(outcomes[1].first);
    EXPECT_EQ(outcomes[1].second, (QBRange{-1, 0}));
}

TEST_F(ParseQueryTest, WhatTheStatementHeldStaysUntilEverybodyWasTold) {
    parse("SELECT 1 FROM film WHERE a = 1 GROUP BY a HAVING b = 1 ORDER BY a");
    const long where = root()->whereExpr->root->id();
    const long source = root()->sourceExpr->root->value->id();
    const auto* const element = root()->whereExpr;
    bool isKept = false;
    engine->registerNotifyChangeListener(modified, [&](const std::string&, const auto*) {
        isKept = isAlive(where) && isAlive(source) && element->root->id() == where;
    });
    parse("SELECT 2");
    EXPECT_TRUE(isKept);
    EXPECT_FALSE(isAlive(where));
    EXPECT_FALSE(isAlive(source));
    EXPECT_EQ(engine->core()->retired.size(), 0U);
}

TEST_F(ParseQueryTest, TheLayerThatIsCurrentWhenTheWorkStartsIsReplaced) {
    auto* const inner = setSubquery();
    engine->pushNewLayerTopLevelQueryComponent(inner, "inner");
    parse("SELECT 7");
    EXPECT_EQ(dumpStatement(inner), "statement\n  select\n    expression \"7\"\n");
    EXPECT_EQ(engine->notices.back().parameters.at("layer").toInt(), 1);
}

TEST_F(ParseQueryTest, ParsesAreDeliveredOneByOneAndTheLastEndsTheWait) {
    std::vector<bool> wasParsing;
    engine->registerNotifyChangeListener(modified, [&](const std::string&, const auto*) {
        wasParsing.push_back(engine->isParsingQuery());
    });
    engine->parseQuery("SELECT 1", note());
    engine->parseQuery("SELECT 2", nullptr);
    host.finishWorkers();
    EXPECT_EQ(outcomes.size(), 1U);
    EXPECT_EQ(wasParsing, (std::vector<bool>{true, false}));
}

TEST_F(ParseQueryTest, AnEngineThatGoesBeforeTheEndWakesTheWorkerAndTellsNobody) {
    engine->parseQuery("SELECT 1 FROM film WHERE a = 1", note());
    engine.destroy();
    host.finishWorkers();  // or the fixture's end would wait for ever
    EXPECT_TRUE(outcomes.empty());
    EXPECT_TRUE(fetched.empty());
}

TEST_F(ParseQueryTest, AnyOfThoseWhoAreToldMayDestroyTheEngine) {
    const auto destroy = [this](const std::string&, const auto*) {
        engine.destroy();
    };
    engine->registerNotifyChangeListener(unsupported, destroy);
    engine->parseQuery("SELECT", note());
    host.finishWorkers();
    EXPECT_EQ(outcomes.size(), 1U);
    EXPECT_EQ(engine.get(), nullptr);
}

TEST_F(EngineTest, CompletionMayDestroyTheEngineAndAFamilyWithoutTextIsLeftAlone) {
    engine->setDatabaseInfo(DatabaseTypeMongoDB, 5);
    engine->registerIdentifierCandidateChildrenUpdater([](auto*, auto*) {});
    engine->notices.clear();
    engine->parseQuery("SELECT", nullptr);
    host.finishWorkers();
    ASSERT_EQ(engine->notices.size(), 1U);
    EXPECT_EQ(engine->notices[0].parameters.at("elements.size").toInt(), 0);
    bool isRead = false;
    engine->parseQuery("SELECT", [&](bool given, QBRange) {
        isRead = given;
        engine.destroy();
    });
    host.finishWorkers();
    EXPECT_TRUE(isRead);
    EXPECT_EQ(engine.get(), nullptr);
}
