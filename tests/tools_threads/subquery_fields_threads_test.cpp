#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "model/detached_parts.h"
#include "parser/query_parser.h"
#include "support/host_callbacks.h"
#include "support/long_runs.h"
#include "support/owned_engine.h"
#include "tools/selection_tools.h"
#include "tools/subquery_fields.h"

using namespace QB;
using namespace QB::Test;
using namespace QB::Component::SQL;

namespace {

/// The host has no fetch functions that catch, so the server of this scene does not throw.
void fillWithTables(IQBIdentifierCandidateAccessor* accessor, QBIdentifierCandidate* node) {
    for (const char* name : {"shop", "a", "b"})
        accessor->setName(accessor->addChild(node), name);
}

/// A new FROM clause whose one source is a subquery over a subquery; what stood there is retired.
void replaceSources(QBEngine* engine) {
    const OwnedStatement content(new SQLSelectStmtComponent);
    QBQueryParser::parseStatement(
        content.get(), "SELECT 1 FROM (SELECT *, x.* FROM (SELECT * FROM a) AS x, shop.b) AS s",
        DatabaseTypePostgreSQL, "shop");
    const auto replace = [&](ELEMSQLSourceExpr* element) {
        DetachedParts parts;
        std::swap(element->root, content->sourceExpr->root);
        parts.add(std::unique_ptr<SourceNode>(std::exchange(content->sourceExpr->root, nullptr)));
        engine->retire(std::move(parts));
        return true;
    };
    engine->modifyInTopLevelQueryComponentElement<ELEMSQLSourceExpr*>(ElementSource, 0, replace,
                                                                      nullptr);
}

struct Outcome {
    long unanswered = 0;
    int withNames = 0;
};

/// Asks for field lists while the statement is edited, layers come and go and another refresh
/// runs, in an order of @p seed; the engine is destroyed at the end, or is waited for.
Outcome playScene(unsigned seed, bool isEngineDestroyed) {
    HostCallbacks host;
    OwnedEngine<> engine(DatabaseTypePostgreSQL);
    engine->setCurrentSchema("shop");
    engine->registerIdentifierCandidateChildrenUpdater(fillWithTables);
    std::vector<int> answers;  // main thread
    int withNames = 0;         // main thread
    const auto subquery = [&engine] {
        auto* root = static_cast<SQLSelectStmtComponent*>(engine->topLevelQueryComponent(0));
        SourceNode* node = root->sourceExpr->root;
        return node ? dynamic_cast<SQLSubquerySourceComponent*>(node->value) : nullptr;
    };
    std::vector<std::function<void()>> steps;
    const auto addSteps = [&steps](std::size_t count, const std::function<void()>& step) {
        steps.insert(steps.end(), count, step);
    };
    addSteps(4, [&] {
        const std::size_t index = answers.size();
        answers.push_back(0);
        Tools::obtainAndFetchSubqueryFieldList(
            engine.get(), subquery(),
            [&answers, &withNames, index](const auto*, const auto& names) {
                ++answers[index];
                withNames += !names.empty();
            });
    });
    addSteps(3, [&] { replaceSources(engine.get()); });
    addSteps(2, [&] {
        Tools::SQL::changeItemComponentAllSelection(engine.get(), nullptr, subquery(), true, true);
    });
    addSteps(1, [&] {
        if (auto* source = subquery())
            engine->pushNewLayerTopLevelQueryComponent(source->subquery, "s");
    });
    addSteps(1, [&] {
        engine->addRefreshRootIdentifierCandidateChildrenRequest(true);
        engine->refreshRequestedIdentifierCandidateChildren(true);
    });
    addSteps(1, [&] { engine->setCurrentSchema("a"); });
    addSteps(1, [&] { host.runPending(); });
    addSteps(1, [&] {
        engine->resetUi();
        engine->setDatabaseInfo(DatabaseTypeSQLite, 1);
    });
    replaceSources(engine.get());
    std::shuffle(steps.begin(), steps.end(), std::mt19937(seed));
    for (const auto& step : steps)
        step();
    if (isEngineDestroyed) engine.destroy();
    host.finishWorkers();
    EXPECT_LE(*std::max_element(answers.begin(), answers.end()), 1);
    return {std::count(answers.begin(), answers.end(), 0), withNames};
}

}  // namespace

TEST(SubqueryFieldsThreads, EveryRequestIsAnsweredOnceWhileTheEngineLivesAndNeverTwice) {
    int withNames = 0;
    for (int seed = 0; seed < repetitions(20); ++seed) {
        playScene(static_cast<unsigned>(seed), true);
        const Outcome outcome = playScene(static_cast<unsigned>(seed), false);
        EXPECT_EQ(outcome.unanswered, 0);
        withNames += outcome.withNames;
    }
    EXPECT_GT(withNames, 0);  // or the scene would show nothing
}
