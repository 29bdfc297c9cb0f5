#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "engine/engine_core.h"
#include "engine/main_thread_call.h"
#include "stringifier/query_component_stringifier.h"
#include "support/host_callbacks.h"
#include "support/owned_engine.h"

using namespace QB;
using namespace QB::Test;
using namespace QB::Component::SQL;

namespace {

void replaceTable(QBEngine* engine) {
    const auto replace = [engine](ELEMSQLSourceExpr* element) {
        auto* leaf = new SourceNode;
        leaf->value = new SQLIdentifierSourceComponent;
        DetachedParts parts;
        parts.add(std::unique_ptr<SourceNode>(std::exchange(element->root, leaf)));
        engine->retire(std::move(parts));
        return true;
    };
    engine->modifyInTopLevelQueryComponentElement<ELEMSQLSourceExpr*>(ElementSource, 0, replace,
                                                                      nullptr);
}

/// The new column is one of @p source, which stays when it is retired.
void replaceColumns(QBEngine* engine, SQLAbstractSourceComponent* source) {
    const auto replace = [engine, source](ELEMSQLSelectColumnExpr* element) {
        auto* column = new SQLFieldColumnComponent;
        column->source = source;
        DetachedParts parts;
        for (SQLAbstractColumnComponent* earlier : std::exchange(element->columns, {column}))
            parts.add(std::unique_ptr<SQLAbstractColumnComponent>(earlier));
        engine->retire(std::move(parts));
        return true;
    };
    engine->modifyInTopLevelQueryComponentElement<ELEMSQLSelectColumnExpr*>(ElementSelectColumn, 0,
                                                                            replace, nullptr);
}

/// How much of the work came to its end.
struct Outcome {
    int generated = 0;
    int parsed = 0;
};

/// Does to one engine what a host and the panels do, in an order of @p seed, and destroys it
/// anywhere between. What a step started goes on meanwhile.
Outcome playScene(unsigned seed) {
    HostCallbacks host;
    OwnedEngine<> engine(DatabaseTypeMySQL);
    engine->registerIdentifierCandidateChildrenUpdater([](auto* accessor, auto* node) {
        accessor->clearChildren(node);
        for (int i = 0; i < 20; ++i)
            accessor->setName(accessor->addChild(node), "n" + std::to_string(i));
    });
    const auto root = [&engine] {
        return static_cast<SQLSelectStmtComponent*>(engine->topLevelQueryComponent(0));
    };
    int generated = 0;  // main thread
    int parsed = 0;     // main thread
    std::vector<std::function<void()>> steps;
    const auto addTwice = [&steps](const auto& step) {
        steps.insert(steps.end(), 2, step);
    };
    addTwice([&] {
        engine->addRefreshIdentifierCandidateChildrenRequest({"n1", "n2"}, true);
        engine->refreshRequestedIdentifierCandidateChildren(true);
    });
    // What a preview does: the statement was handed over by address and id.
    addTwice([&] {
        const auto work = [&generated, core = engine->core(), statement = root(), id = root()->id(),
                           engineId = engine->id(), info = engine->databaseInfo()] {
            const auto read = [&] {
                QBQueryComponentStringifier::createStringifier(info)->stringifyQuery(statement);
            };
            if (!core->withLiveComponent(id, read)) return;
            postToMainThread(engineId, [&generated] { ++generated; });
        };
        Callback::runOperationOnDispatchedThread(work);
    });
    addTwice([&] {
        engine->parseQuery("SELECT a FROM n1, n2 AS x WHERE x.a = 1 ORDER BY a",
                           [&parsed](bool isRead, QBRange) { parsed += isRead; });
    });
    addTwice([&] { engine->parseQuery("SELECT", nullptr); });
    addTwice([&] { replaceTable(engine.get()); });
    addTwice([&] {
        const SourceNode* node = root()->sourceExpr->root;
        while (node && node->left)
            node = node->left;  // to a table
        replaceColumns(engine.get(), node ? node->value : nullptr);
    });
    steps.push_back([&] { host.runPending(); });
    steps.push_back([&] { host.finishWorkers(); });  // so that some texts come back for certain
    steps.push_back([&] { engine->setDatabaseInfo(DatabaseTypePostgreSQL, 1); });
    std::mt19937 random(seed);
    std::shuffle(steps.begin(), steps.end(), random);
    steps.resize(std::uniform_int_distribution<std::size_t>(0, steps.size())(random));
    for (const auto& step : steps)
        step();
    engine.destroy();
    host.finishWorkers();
    return {generated, parsed};
}

/// Work on several threads, at most once in each of main's rounds, so that nobody starves. The
/// counting of rounds orders nothing between the threads: the sanitizer sees which accesses only
/// luck keeps apart.
class Crowd {
public:
    static constexpr int repetitions = 200;

    void start(const std::function<void()>& work) {
        ++m_running;
        Callback::runOperationOnDispatchedThread([this, work] {
            repeat(work);
            --m_running;
        });
    }

    void repeat(const std::function<void()>& work) const {
        for (int i = 0; i < repetitions; ++i) {
            const int round = m_round.load(std::memory_order_relaxed);
            work();
            while (m_round.load(std::memory_order_relaxed) == round &&
                   !m_isOver.load(std::memory_order_relaxed))
                std::this_thread::yield();
        }
    }

    void nextRound() { m_round.fetch_add(1, std::memory_order_relaxed); }
    bool isRunning() const { return m_running.load() > 0; }
    /// No more rounds come: what a late task still repeats runs freely.
    void end() { m_isOver.store(true, std::memory_order_relaxed); }

private:
    std::atomic<int> m_running{0};
    std::atomic<int> m_round{0};
    std::atomic<bool> m_isOver{false};
};

}  // namespace

TEST(EngineThreads, AnyOrderOfWorkEndsCleanlyWhereverTheEngineIsDestroyed) {
    Outcome sum;
    for (unsigned seed = 0; seed < 60; ++seed) {
        const Outcome outcome = playScene(seed);
        sum.generated += outcome.generated;
        sum.parsed += outcome.parsed;
    }
    EXPECT_GT(sum.generated, 0);  // or the scene would show nothing
    EXPECT_GT(sum.parsed, 0);
}

TEST(EngineThreads, WorkersThatModifyFetchReadAndGenerateMeetTheMainThread) {
    HostCallbacks host;
    OwnedEngine<> engine(DatabaseTypeSQLite);
    Crowd crowd;
    std::atomic<int> updatersInside{0};
    std::atomic<int> updatersDone{0};
    engine->registerIdentifierCandidateChildrenUpdater([&](auto* accessor, auto* node) {
        EXPECT_EQ(updatersInside.fetch_add(1, std::memory_order_relaxed), 0);
        crowd.repeat([&] {
            accessor->setName(accessor->addChild(node), "grows");
            if (accessor->childCount(node) > 20) accessor->clearChildren(node);
        });
        updatersInside.fetch_sub(1, std::memory_order_relaxed);
        updatersDone.fetch_add(1, std::memory_order_relaxed);
    });
    int notices = 0;
    QObject::connect(engine->signalEmitter(),
                     &QBEngineSignalEmitter::topLevelQueryComponentElementModified,
                     [&notices] { ++notices; });
    constexpr int tasks = 3;
    for (int task = 0; task < tasks; ++task) {
        engine->addRefreshRootIdentifierCandidateChildrenRequest(true);
        engine->refreshRequestedIdentifierCandidateChildren(true);
    }
    crowd.start([&] { replaceColumns(engine.get(), nullptr); });
    crowd.start([&] { replaceTable(engine.get()); });
    std::atomic<int> parses{0};
    crowd.start([&] {
        if (parses.fetch_add(1, std::memory_order_relaxed) % 20 == 0)
            engine->parseQuery("SELECT a FROM n1 WHERE a = 1", nullptr);
    });
    crowd.start([&] { engine->findAllIdentifierRefreshPathInCurrentQueryLevel(); });
    crowd.start([&] {
        const std::lock_guard lock(engine->queryComponentAccessMutex());
        engine->buildQuery();
    });
    while (crowd.isRunning() || updatersDone.load(std::memory_order_relaxed) < tasks ||
           engine->isParsingQuery()) {
        host.runPending();
        engine->childrenSnapshot(nullptr);
        crowd.nextRound();
    }
    crowd.end();  // a parse has its tables fetched after it was delivered
    host.finishWorkers();
    EXPECT_EQ(notices, 2 * Crowd::repetitions + Crowd::repetitions / 20);
    EXPECT_EQ(engine->core()->retired.size(), 0U);
}
