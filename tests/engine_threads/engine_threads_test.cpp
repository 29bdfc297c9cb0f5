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

/// One engine with everything that a host and the panels do to it at once.
///
/// Each step returns at once; what it started goes on while the next steps run, and while the
/// engine is destroyed.
class Scene {
public:
    Scene() {
        m_engine->registerIdentifierCandidateChildrenUpdater([](auto* accessor, auto* node) {
            accessor->clearChildren(node);
            for (int i = 0; i < 20; ++i) {
                QBIdentifierCandidate* const child = accessor->addChild(node);
                accessor->setName(child, "n" + std::to_string(i));
                accessor->setType(child, IdentifierTypeTable);
            }
        });
    }

    std::vector<std::function<void()>> steps() {
        return {[this] { fetch({}); },
                [this] { fetch({"n1"}); },
                [this] {
                    fetch({"n1", "n2"});
                },
                [this] { generate(); },
                [this] { generate(); },
                [this] { addTable("t"); },
                [this] { addTable("u"); },
                [this] { removeTable(); },
                [this] { addColumn(); },
                [this] { addColumn(); },
                [this] { readCandidates(); },
                [this] { changeServer(); },
                [this] { m_host.runPending(); },
                [this] {
                    m_host.runPending();
                }};
    }

    void destroyEngine() { m_engine.destroy(); }
    void finish() { m_host.finishWorkers(); }

    /// How many texts come back when nothing ends the engine meanwhile.
    int generateInPeace() {
        generate();
        finish();
        return m_generated;
    }

private:
    void fetch(const std::vector<std::string>& path) {
        m_engine->addRefreshIdentifierCandidateChildrenRequest(path, true);
        m_engine->refreshRequestedIdentifierCandidateChildren(true);
    }

    /// What a preview does: the statement was handed over by address and id.
    void generate() {
        auto* const statement = m_engine->topLevelQueryComponent(0);
        const long id = statement->id();
        Callback::runOperationOnDispatchedThread([this, core = m_engine->core(), statement, id,
                                                  engineId = m_engine->id(),
                                                  info = m_engine->databaseInfo()] {
            std::string text;
            const auto read = [&] {
                const auto stringifier = QBQueryComponentStringifier::createStringifier(info);
                text = stringifier->stringifyQuery(statement);
            };
            if (!core->withLiveComponent(id, read)) return;
            postToMainThread(engineId, [this] { ++m_generated; });
        });
    }

    template <typename Element>
    void modify(TopLevelQueryComponentElementEnum which, std::function<bool(Element*)> block) {
        m_engine->modifyInTopLevelQueryComponentElement<Element*>(which, 0, block, this);
    }

    void addTable(const std::string& name) {
        modify<ELEMSQLSourceExpr>(ElementSource, [&name](ELEMSQLSourceExpr* element) {
            auto* leaf = new SourceNode;
            auto* table = new SQLIdentifierSourceComponent;
            table->name = name;
            leaf->value = table;
            SourceNode* const earlier = std::exchange(element->root, leaf);
            if (!earlier) return true;
            auto* join = new SourceNode;
            auto* comma = new SQLJoinSourceNodeComponent;
            comma->joinType = SQLJoinTypeComma;
            join->value = comma;
            join->left = earlier;
            join->right = leaf;
            element->root = join;
            return true;
        });
    }

    void removeTable() {
        modify<ELEMSQLSourceExpr>(ElementSource, [this](ELEMSQLSourceExpr* element) {
            DetachedParts parts;
            parts.add(std::unique_ptr<SourceNode>(std::exchange(element->root, nullptr)));
            m_engine->retire(std::move(parts));
            return true;
        });
    }

    /// A column of the first table in sight; it stays when the table is retired.
    void addColumn() {
        auto* const statement =
            static_cast<SQLSelectStmtComponent*>(m_engine->topLevelQueryComponent(0));
        SourceNode* node = statement->sourceExpr->root;
        while (node && node->right)
            node = node->right;
        modify<ELEMSQLSelectColumnExpr>(ElementSelectColumn,
                                        [node](ELEMSQLSelectColumnExpr* element) {
                                            auto* column = new SQLFieldColumnComponent;
                                            column->source = node ? node->value : nullptr;
                                            column->fieldName = "f";
                                            element->columns.push_back(column);
                                            return true;
                                        });
    }

    void readCandidates() {
        for (const auto& child : m_engine->childrenSnapshot(nullptr)) {
            EXPECT_EQ(m_engine->candidatePath(child.candidate).size(), 1U);
            m_engine->childrenSnapshot(child.candidate);
            m_engine->isCandidateInTree(child.candidate);
        }
    }

    void changeServer() {
        const bool isMySQL = m_engine->databaseType() == DatabaseTypeMySQL;
        m_engine->setDatabaseInfo(isMySQL ? DatabaseTypePostgreSQL : DatabaseTypeMySQL, 1);
    }

    HostCallbacks m_host;
    OwnedEngine<> m_engine{DatabaseTypeMySQL};
    int m_generated = 0;  // main thread
};

}  // namespace

TEST(EngineThreads, AnyOrderOfWorkEndsCleanlyWhereverTheEngineIsDestroyed) {
    for (unsigned seed = 0; seed < 60; ++seed) {
        std::mt19937 random(seed);
        Scene scene;
        auto steps = scene.steps();
        std::shuffle(steps.begin(), steps.end(), random);
        const auto last = std::uniform_int_distribution<std::size_t>(0, steps.size())(random);
        for (std::size_t i = 0; i < last; ++i)
            steps[i]();
        scene.destroyEngine();
        scene.finish();
    }
    EXPECT_EQ(Scene().generateInPeace(), 1);  // or the scenes would show nothing
}

namespace {

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
            while (m_round.load(std::memory_order_relaxed) == round)
                std::this_thread::yield();
        }
    }

    void nextRound() { m_round.fetch_add(1, std::memory_order_relaxed); }
    bool isRunning() const { return m_running.load() > 0; }

private:
    std::atomic<int> m_running{0};
    std::atomic<int> m_round{0};
};

template <typename Component>
DetachedParts partsOf(std::vector<Component*> components) {
    DetachedParts parts;
    for (Component* component : components)
        parts.add(std::unique_ptr<QB::Component::AbstractQueryComponent>(component));
    return parts;
}

void replaceColumns(QBEngine* engine, std::atomic<int>& changes) {
    engine->modifyInTopLevelQueryComponentElement<ELEMSQLSelectColumnExpr*>(
        ElementSelectColumn, 0,
        [engine](ELEMSQLSelectColumnExpr* element) {
            engine->retire(partsOf(std::exchange(element->columns, {new SQLFieldColumnComponent})));
            return true;
        },
        nullptr);
    ++changes;
}

void replaceTable(QBEngine* engine, std::atomic<int>& changes) {
    engine->modifyInTopLevelQueryComponentElement<ELEMSQLSourceExpr*>(
        ElementSource, 0,
        [engine](ELEMSQLSourceExpr* element) {
            auto* leaf = new SourceNode;
            leaf->value = new SQLIdentifierSourceComponent;
            DetachedParts parts;
            parts.add(std::unique_ptr<SourceNode>(std::exchange(element->root, leaf)));
            engine->retire(std::move(parts));
            return true;
        },
        nullptr);
    ++changes;
}

}  // namespace

TEST(EngineThreads, WorkersThatModifyFetchReadAndGenerateMeetTheMainThread) {
    HostCallbacks host;
    OwnedEngine<> engine(DatabaseTypeSQLite);
    Crowd crowd;
    std::atomic<int> updatersInside{0};
    engine->registerIdentifierCandidateChildrenUpdater([&](auto* accessor, auto* node) {
        EXPECT_EQ(updatersInside.fetch_add(1, std::memory_order_relaxed), 0);
        crowd.repeat([&] {
            accessor->setName(accessor->addChild(node), "grows");
            if (accessor->childCount(node) > 20) accessor->clearChildren(node);
        });
        updatersInside.fetch_sub(1, std::memory_order_relaxed);
    });
    int notices = 0;
    QObject::connect(engine->signalEmitter(),
                     &QBEngineSignalEmitter::topLevelQueryComponentElementModified,
                     [&notices] { ++notices; });
    for (int task = 0; task < 3; ++task) {
        engine->addRefreshRootIdentifierCandidateChildrenRequest(true);
        engine->refreshRequestedIdentifierCandidateChildren(true);
    }
    std::atomic<int> changes{0};
    crowd.start([&] { replaceColumns(engine.get(), changes); });
    crowd.start([&] { replaceTable(engine.get(), changes); });
    crowd.start([&] { engine->findAllIdentifierRefreshPathInCurrentQueryLevel(); });
    crowd.start([&] {
        const std::lock_guard lock(engine->queryComponentAccessMutex());
        engine->buildQuery();
    });
    while (crowd.isRunning() || engine->isRefreshingIdentifierCandidateChildren()) {
        host.runPending();
        engine->childrenSnapshot(nullptr);
        crowd.nextRound();
    }
    host.finishWorkers();
    EXPECT_EQ(notices, 2 * Crowd::repetitions);
    EXPECT_EQ(notices, changes.load());
    EXPECT_FALSE(engine->isRefreshingIdentifierCandidateChildren());
    EXPECT_EQ(engine->core()->retired.size(), 0U);
}
