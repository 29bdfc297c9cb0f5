#include <gtest/gtest.h>

#include <future>
#include <mutex>

#include "engine/engine_core.h"
#include "engine/main_thread_call.h"
#include "model/notification_names.h"
#include "recording_engine.h"

using namespace QB;
using namespace QB::Test;

class CandidateTest : public EngineTest {
protected:
    QBIdentifierCandidate* add(QBIdentifierCandidate* parent, const std::string& name,
                               IdentifierType type = IdentifierTypeTable) {
        QBIdentifierCandidate* const node = accessor.addChild(parent);
        accessor.setName(node, name);
        accessor.setType(node, type);
        return node;
    }

    QBEngineIdentifierCandidateAccessor accessor{engine->core()};
};

TEST_F(CandidateTest, ANewTreeIsARootOfTypeZeroWithoutChildren) {
    const QBIdentifierCandidate* root = engine->identifierCandidateRootNode();
    EXPECT_EQ(root->parent, nullptr);
    EXPECT_EQ(engine->candidateSnapshot(nullptr).candidate, root);
    EXPECT_FALSE(engine->candidateSnapshot(root).hasChildren);
    EXPECT_EQ(engine->candidateSnapshot(root).type, 0);
    EXPECT_TRUE(engine->candidatePath(root).empty());
    EXPECT_EQ(accessor.childCount(nullptr), 0);
}

TEST_F(CandidateTest, TheAccessorReadsWhatItWrote) {
    QBIdentifierCandidate* const schema = add(nullptr, "s", IdentifierTypeSchema);
    QBIdentifierCandidate* const table = accessor.addChild(schema);
    EXPECT_EQ(accessor.name(table), "");
    EXPECT_EQ(accessor.type(table), 0);
    EXPECT_EQ(accessor.tag(table), 0U);
    accessor.setTag(table, ~quint64(0));
    EXPECT_EQ(accessor.tag(table), ~quint64(0));
    EXPECT_EQ(accessor.name(schema), "s");
    EXPECT_EQ(accessor.type(schema), IdentifierTypeSchema);
    EXPECT_EQ(accessor.parent(table), schema);
    EXPECT_EQ(accessor.parent(schema), nullptr);
    EXPECT_EQ(schema->parent, engine->identifierCandidateRootNode());
    EXPECT_EQ(accessor.childAt(nullptr, 0), schema);
    EXPECT_EQ(accessor.childCount(schema), 1);
}

TEST_F(CandidateTest, RemovedNodesStayReadableButAreNoLongerInTheTree) {
    QBIdentifierCandidate* const schema = add(nullptr, "s");
    QBIdentifierCandidate* const a = add(schema, "a");
    QBIdentifierCandidate* const b = add(schema, "b");
    QBIdentifierCandidate* const c = add(schema, "c");
    QBIdentifierCandidate* const field = add(b, "f", IdentifierTypeField);
    EXPECT_TRUE(engine->isCandidateInTree(field));
    EXPECT_TRUE(accessor.removeChild(schema, b));
    EXPECT_FALSE(accessor.removeChild(schema, b));
    EXPECT_FALSE(accessor.removeChild(nullptr, a));
    EXPECT_EQ(accessor.childAt(schema, 0), a);
    EXPECT_EQ(accessor.childAt(schema, 1), c);
    EXPECT_FALSE(engine->isCandidateInTree(field));
    EXPECT_EQ(engine->candidatePath(field), (Names{"s", "b", "f"}));
    accessor.clearChildren(nullptr);
    EXPECT_FALSE(engine->isCandidateInTree(c));
    EXPECT_EQ(accessor.name(c), "c");
    EXPECT_TRUE(engine->isCandidateInTree(engine->identifierCandidateRootNode()));
}

TEST_F(CandidateTest, AnAddressThatIsNoCandidateIsNeverRead) {
    const auto* wild = reinterpret_cast<const QBIdentifierCandidate*>(0x10);
    EXPECT_FALSE(engine->isCandidateInTree(wild));
    EXPECT_FALSE(engine->isCandidateInTree(nullptr));
    EXPECT_TRUE(engine->childrenSnapshot(wild).empty());
    EXPECT_EQ(engine->candidateSnapshot(wild).candidate, nullptr);
    EXPECT_TRUE(engine->candidatePath(wild).empty());
    EXPECT_EQ(engine->findChildCandidate(wild, "a"), nullptr);
    const OwnedEngine<RecordingEngine> other;
    EXPECT_FALSE(engine->isCandidateInTree(other->identifierCandidateRootNode()));
}

TEST_F(CandidateTest, AHundredThousandChildrenAreAppendedAndRead) {
    constexpr std::size_t count = 100000;
    QBIdentifierCandidate* const schema = add(nullptr, "s");
    for (std::size_t i = 0; i < count; ++i)
        add(schema, "t" + std::to_string(i));
    const auto children = engine->childrenSnapshot(schema);
    ASSERT_EQ(children.size(), count);
    for (const QBIdentifierCandidateSnapshot& child : children)
        ASSERT_TRUE(engine->isCandidateInTree(child.candidate));  // quadratic if it searched lists
    EXPECT_EQ(children.back().name, "t99999");
    EXPECT_EQ(engine->findChildCandidate(schema, "t99999"), children.back().candidate);
    EXPECT_EQ(engine->findChildCandidate(schema, "T1"), nullptr);
}

TEST_F(CandidateTest, UpdaterAndSearcherAreAskedOnlyIfTheyAreSet) {
    engine->triggerIdentifierCandidateChildrenUpdater(&accessor, nullptr);
    EXPECT_TRUE(engine->triggerForeignKeySearcher({"s", "a"}, {{"s", "b"}}).empty());
    engine->registerForeignKeySearcher(
        [](const QBIdentifierObjectPath& object, const auto& others) {
            return QBForeignKeys{{{object.schema, object.object, "x"},
                                  {others.begin()->schema, others.begin()->object, "y"}}};
        });
    engine->registerIdentifierCandidateChildrenUpdater(
        [](auto* given, auto* node) { given->setName(given->addChild(node), "new"); });
    engine->triggerIdentifierCandidateChildrenUpdater(&accessor, nullptr);
    EXPECT_EQ(engine->childrenSnapshot(nullptr).at(0).name, "new");
    const QBForeignKeys keys = engine->triggerForeignKeySearcher({"s", "a"}, {{"s", "b"}});
    EXPECT_EQ(keys.begin()->second, (QBIdentifierFieldPath{"s", "b", "y"}));
}

// ---- refresh ----------------------------------------------------------------------------------

/// An updater that gives every node the children "a" and "b", and writes down what it was asked.
class RefreshTest : public CandidateTest {
protected:
    RefreshTest() {
        engine->registerIdentifierCandidateChildrenUpdater([this](auto* given, auto* node) {
            fetched.push_back(node ? given->name(node) : "root");
            if (node == engine->identifierCandidateRootNode()) ADD_FAILURE() << "root by pointer";
            for (const char* name : {"a", "b"}) {
                QBIdentifierCandidate* const child = given->addChild(node);
                given->setName(child, (node ? given->name(node) : "") + name);
            }
            if (action) action();
        });
    }

    Names refresh(const std::vector<std::string>& path, bool force) {
        fetched.clear();
        engine->addRefreshIdentifierCandidateChildrenRequest(path, force);
        engine->refreshRequestedIdentifierCandidateChildren(false);
        return fetched;
    }

    bool isTreeMutexFree() const {
        std::recursive_mutex& mutex = engine->core()->identifierTreeMutex;
        return std::async(std::launch::async,
                          [&mutex] {
                              const std::unique_lock lock(mutex, std::try_to_lock);
                              return lock.owns_lock();
                          })
            .get();
    }

    Names fetched;
    std::function<void()> action;
    const std::string begun = Notification::identifierCandidateChildrenUpdateBegun;
    const std::string ended = Notification::identifierCandidateChildrenUpdateEnded;
};

TEST_F(RefreshTest, APathIsFetchedFromTheRootDownAsFarAsItExists) {
    EXPECT_EQ(refresh({"a", "unknown"}, false), (Names{"root", "a"}));
    EXPECT_EQ(refresh({"unknown", "x"}, false), Names{});
    EXPECT_EQ(refresh({"a", "ab"}, false), Names{"ab"});
}

TEST_F(RefreshTest, AFilledNodeIsFetchedAgainOnlyWithForce) {
    EXPECT_EQ(refresh({}, false), Names{"root"});
    EXPECT_EQ(refresh({}, false), Names{});
    EXPECT_EQ(refresh({}, true), Names{"root"});
    EXPECT_EQ(refresh({"a"}, true), Names{"a"});
    EXPECT_EQ(refresh({"a"}, false), Names{});
    EXPECT_EQ(refresh({"a", "ab"}, true), Names{"ab"});  // force is for the end of the path only
}

TEST_F(RefreshTest, AFetchIsFramedByItsNotificationsWithNullForTheRoot) {
    refresh({}, false);
    QBIdentifierCandidate* const a = engine->findChildCandidate(nullptr, "a");
    EXPECT_EQ(engine->notices.at(0).parameters.at("ident").toPointer(), nullptr);
    EXPECT_EQ(engine->takeNames(), (Names{begun, ended}));
    engine->addRefreshIdentifierCandidateChildrenRequest(a, false);
    engine->refreshRequestedIdentifierCandidateChildren(false);
    EXPECT_EQ(engine->notices.at(1).parameters.at("ident").toPointer(), a);
    EXPECT_EQ(engine->takeNames(), (Names{begun, ended}));
}

TEST_F(RefreshTest, RequestsOfOneRunAreSortedSoThatParentsComeFirst) {
    add(nullptr, "s");
    engine->addRefreshIdentifierCandidateChildrenRequest({"s", "sa"}, true);
    engine->addRefreshIdentifierCandidateChildrenRequest({"s"}, true);
    engine->addRefreshRootIdentifierCandidateChildrenRequest(true);
    engine->refreshRequestedIdentifierCandidateChildren(false);
    EXPECT_EQ(fetched, (Names{"root", "s", "sa"}));
    engine->refreshRequestedIdentifierCandidateChildren(false);
    EXPECT_EQ(fetched.size(), 3U);  // the queue was emptied
}

TEST_F(RefreshTest, AListenerMayRefreshAgainFromWithinARunOnTheMainThread) {
    const long token = engine->registerNotifyChangeListener(
        ended, [this, isNested = false](const std::string&, const auto*) mutable {
            if (std::exchange(isNested, true)) return;
            engine->addRefreshIdentifierCandidateChildrenRequest({"a"}, false);
            engine->refreshRequestedIdentifierCandidateChildren(false);
        });
    EXPECT_EQ(refresh({}, false), (Names{"root", "a"}));
    engine->unregisterNotifyChangeListener(ended, token);
}

TEST_F(RefreshTest, ARunOffTheMainThreadNotifiesOnTheMainThreadAndIsCounted) {
    const auto mainThread = std::this_thread::get_id();
    int notices = 0;
    for (const std::string& name : {begun, ended}) {
        engine->registerNotifyChangeListener(name, [&](const std::string&, const auto*) {
            EXPECT_EQ(std::this_thread::get_id(), mainThread);
            EXPECT_TRUE(engine->isRefreshingIdentifierCandidateChildren());
            ++notices;
        });
    }
    action = [mainThread] {
        EXPECT_NE(std::this_thread::get_id(), mainThread);
    };
    engine->addRefreshRootIdentifierCandidateChildrenRequest(false);
    engine->refreshRequestedIdentifierCandidateChildren(true);
    EXPECT_TRUE(engine->isRefreshingIdentifierCandidateChildren());
    host.finishWorkers();
    EXPECT_EQ(notices, 2);
    EXPECT_FALSE(engine->isRefreshingIdentifierCandidateChildren());
}

TEST_F(RefreshTest, WithoutAnUpdaterTheTaskEndsWithAnErrorAndNothingStaysHeld) {
    engine->registerIdentifierCandidateChildrenUpdater(nullptr);
    engine->addRefreshRootIdentifierCandidateChildrenRequest(false);
    engine->addRefreshIdentifierCandidateChildrenRequest({"left", "over"}, false);
    EXPECT_EQ(protocolErrorOf([&] { engine->refreshRequestedIdentifierCandidateChildren(false); }),
              "identCand: Updater not set");
    EXPECT_EQ(engine->takeNames(), (Names{begun, ended}));
    EXPECT_FALSE(engine->isRefreshingIdentifierCandidateChildren());
    EXPECT_TRUE(isTreeMutexFree());
}

TEST_F(RefreshTest, AnUpdaterThatThrowsEndsItsTaskAndTheNextRunWorks) {
    action = [] {
        throw std::string("connection lost");
    };
    engine->addRefreshRootIdentifierCandidateChildrenRequest(true);
    EXPECT_THROW(engine->refreshRequestedIdentifierCandidateChildren(false), std::string);
    EXPECT_EQ(engine->takeNames(), (Names{begun, ended}));
    EXPECT_FALSE(engine->isRefreshingIdentifierCandidateChildren());
    EXPECT_TRUE(isTreeMutexFree());
    action = nullptr;
    EXPECT_EQ(refresh({}, true), Names{"root"});
}

TEST_F(RefreshTest, ARunEndsWhenTheEngineGoesDuringAFetch) {
    std::promise<void> entered;
    std::promise<void> released;
    Names asked;
    engine->registerIdentifierCandidateChildrenUpdater([&](auto* given, auto* node) {
        asked.push_back(node ? "node" : "root");
        entered.set_value();
        released.get_future().wait();
        given->setName(given->addChild(node), "late");  // the tree is still there
    });
    engine->addRefreshRootIdentifierCandidateChildrenRequest(true);
    engine->addRefreshIdentifierCandidateChildrenRequest({"late"}, true);
    engine->refreshRequestedIdentifierCandidateChildren(true);
    // The Begun closure has to run before the updater is asked.
    auto hasEntered = entered.get_future();
    while (hasEntered.wait_for(std::chrono::seconds(0)) != std::future_status::ready)
        host.runPending();
    engine.destroy();
    released.set_value();
    host.finishWorkers();
    EXPECT_EQ(asked, Names{"root"});
}

TEST_F(RefreshTest, ARunEndsWhenTheEngineGoesBeforeItsFirstNotification) {
    static std::promise<std::function<void()>> posted;
    posted = {};
    Callback::runOperationOnMainThread = [](std::function<void()> f) {
        posted.set_value(f);
    };
    engine->addRefreshRootIdentifierCandidateChildrenRequest(true);
    engine->refreshRequestedIdentifierCandidateChildren(true);
    const std::function<void()> begin = posted.get_future().get();
    engine.destroy();
    begin();
    host.finishWorkers();
    EXPECT_EQ(fetched, Names{});
}

// ---- calls to the main thread -----------------------------------------------------------------

TEST_F(EngineTest, ACallWaitsForItsClosureAndSaysWhetherItRan) {
    bool hasRun = false;
    EXPECT_TRUE(callOnMainThread(engine->id(), [&hasRun] { hasRun = true; }));
    EXPECT_TRUE(hasRun);
    EXPECT_FALSE(callOnMainThread(-1, [] { ADD_FAILURE(); }));
}

TEST_F(EngineTest, ACallReturnsWhetherTheHostDropsItsClosureOrKeepsIt) {
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
    bool wasRun = true;
    std::thread caller([&] {
        wasRun = callOnMainThread(engine->id(), [] { throw std::runtime_error("seeded"); });
    });
    for (bool hasThrown = false; !hasThrown;) {
        try {
            host.runPending();
        } catch (const std::runtime_error&) {
            hasThrown = true;
        }
    }
    caller.join();
    EXPECT_FALSE(wasRun);
}
