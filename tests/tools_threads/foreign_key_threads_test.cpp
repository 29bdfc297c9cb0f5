#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <vector>

#include "support/from_clause.h"
#include "support/host_callbacks.h"
#include "support/owned_engine.h"
#include "tools/foreign_key_joins.h"

using namespace QB;
using namespace QB::Test;
using namespace QB::Component::SQL;

namespace {

/// Opens a subquery that stands among the tables, or goes back.
void changeLayer(QBEngine* engine) {
    if (engine->currentTopLevelQueryComponentLayer() > 0)
        return engine->popCurrentLayerTopLevelQueryComponent();
    auto source = std::make_unique<SQLSubquerySourceComponent>();
    auto* const subquery = new SQLSelectStmtComponent;
    source->subquery = subquery;
    Tools::Identifier::addSourceComponentToExpression(engine, nullptr, std::move(source));
    engine->pushNewLayerTopLevelQueryComponent(subquery, "sub");
}

/// Every table has a key to every other one.
QBForeignKeys keysBetween(const QBIdentifierObjectPath& object,
                          const std::set<QBIdentifierObjectPath>& others) {
    QBForeignKeys keys;
    for (const QBIdentifierObjectPath& other : others)
        keys.insert({{object.schema, object.object, "f"}, {other.schema, other.object, "id"}});
    return keys;
}

/// Adds tables as a user does, in an order of @p seed with all that may come in between, and
/// destroys the engine anywhere. Returns how many answers came.
int playScene(unsigned seed) {
    HostCallbacks host;
    OwnedEngine<> engine(DatabaseTypeSQLite);
    engine->registerForeignKeySearcher(keysBetween);
    int answers = 0;  // main thread
    std::vector<std::function<void()>> steps;
    for (int time = 0; time < 4; ++time) {
        const std::string name = std::to_string(time % 3);
        steps.push_back([&, name] {
            auto* const added = addTable(engine.get(), {"s"}, name);
            Tools::SQL::makeJoinLinkByForeignKeyIfNecessary(engine.get(), nullptr, added);
            Tools::SQL::findForeignKeyJoins(engine.get(), added, [&](const auto& joins) {
                ++answers;
                Tools::SQL::makeJoinLinksByForeignKeys(engine.get(), nullptr, joins);
            });
        });
        steps.push_back([&] { changeLayer(engine.get()); });
        steps.push_back([&] { host.runPending(); });
    }
    for (int time = 0; time < 2; ++time)
        steps.push_back([&] { emptyFromClause(engine.get()); });
    steps.push_back([&] { engine->registerForeignKeySearcher(nullptr); });
    steps.push_back([&] { host.finishWorkers(); });
    steps.push_back([&] {
        engine->resetUi();
        engine->setDatabaseInfo(DatabaseTypePostgreSQL, 1);
    });
    std::mt19937 random(seed);
    std::shuffle(steps.begin(), steps.end(), random);
    steps.resize(std::uniform_int_distribution<std::size_t>(0, steps.size())(random));
    for (const auto& step : steps)
        step();
    engine.destroy();
    host.finishWorkers();
    return answers;
}

}  // namespace

TEST(ForeignKeyThreads, ASearchEndsCleanlyWhateverBecomesOfTheQuery) {
    int answers = 0;
    for (unsigned seed = 0; seed < 200; ++seed)
        answers += playScene(seed);
    EXPECT_GT(answers, 100);  // or the scenes would show nothing
}
