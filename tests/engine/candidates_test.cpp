#include <gtest/gtest.h>

#include "engine/engine_core.h"
#include "recording_engine.h"

using namespace QB;
using namespace QB::Test;

class CandidateTest : public EngineTest {
protected:
    QBIdentifierCandidate* add(QBIdentifierCandidate* parent, const std::string& name) {
        QBIdentifierCandidate* const node = accessor.addChild(parent);
        accessor.setName(node, name);
        return node;
    }

    QBEngineIdentifierCandidateAccessor accessor{engine->core()};
};

TEST_F(CandidateTest, NullStandsForTheRootAndAnAddressThatIsNoCandidateIsNeverRead) {
    QBIdentifierCandidate* const schema = add(nullptr, "s");
    const QBIdentifierCandidate* root = engine->identifierCandidateRootNode();
    EXPECT_EQ(accessor.parent(schema), nullptr);
    EXPECT_EQ(schema->parent, root);
    EXPECT_EQ(accessor.childAt(nullptr, 0), schema);
    EXPECT_EQ(engine->candidateSnapshot(nullptr).candidate, root);
    EXPECT_TRUE(engine->candidatePath(root).empty());
    EXPECT_EQ(engine->findChildCandidate(nullptr, "S"), nullptr);
    const OwnedEngine<RecordingEngine> other;
    EXPECT_FALSE(engine->isCandidateInTree(other->identifierCandidateRootNode()));
    const auto* wild = reinterpret_cast<const QBIdentifierCandidate*>(0x10);
    EXPECT_FALSE(engine->isCandidateInTree(wild) || engine->isCandidateInTree(nullptr));
    EXPECT_TRUE(engine->childrenSnapshot(wild).empty());
    EXPECT_EQ(engine->candidateSnapshot(wild).candidate, nullptr);
    EXPECT_TRUE(engine->candidatePath(wild).empty());
    EXPECT_EQ(engine->findChildCandidate(wild, "a"), nullptr);
}

TEST_F(CandidateTest, RemovedNodesStayReadableButAreNoLongerInTheTree) {
    QBIdentifierCandidate* const schema = add(nullptr, "s");
    QBIdentifierCandidate* const a = add(schema, "a");
    QBIdentifierCandidate* const b = add(schema, "b");
    QBIdentifierCandidate* const c = add(schema, "c");
    QBIdentifierCandidate* const field = add(b, "f");
    accessor.setType(c, IdentifierTypeField);
    accessor.setTag(c, ~quint64(0));
    EXPECT_TRUE(engine->isCandidateInTree(field));
    EXPECT_TRUE(accessor.removeChild(schema, b));
    EXPECT_FALSE(accessor.removeChild(schema, b));
    EXPECT_FALSE(accessor.removeChild(nullptr, a));
    EXPECT_EQ(accessor.childCount(schema), 2);
    EXPECT_EQ(engine->childrenSnapshot(schema, 1, 5).at(0).candidate, c);
    EXPECT_FALSE(engine->isCandidateInTree(field));
    EXPECT_EQ(engine->candidatePath(field), (Names{"s", "b", "f"}));
    accessor.clearChildren(nullptr);
    EXPECT_FALSE(engine->isCandidateInTree(c));
    EXPECT_EQ(accessor.name(c), "c");
    EXPECT_EQ(accessor.type(c), IdentifierTypeField);
    EXPECT_EQ(accessor.tag(c), ~quint64(0));
}

// ---- refresh ----------------------------------------------------------------------------------

/// An updater that gives every node the children "a" and "b", and writes down what it was asked.
class RefreshTest : public CandidateTest {
protected:
    RefreshTest() {
        engine->registerIdentifierCandidateChildrenUpdater([this](auto* given, auto* node) {
            fetched.push_back(node ? given->name(node) : "root");
            EXPECT_NE(node, engine->identifierCandidateRootNode());
            for (const char* name : {"a", "b"})
                add(node, (node ? given->name(node) : "") + name);
            if (action) action();
        });
    }

    Names refresh(const std::vector<std::string>& path, bool force) {
        engine->addRefreshIdentifierCandidateChildrenRequest(path, force);
        return runRequests();
    }

    Names runRequests() {
        fetched.clear();
        engine->refreshRequestedIdentifierCandidateChildren(false);
        return fetched;
    }

    void expectFramedAndNothingHeld() {
        EXPECT_EQ(engine->takeNames(), (Names{begun, ended}));
        EXPECT_FALSE(engine->isRefreshingIdentifierCandidateChildren());
        EXPECT_TRUE(isFree(engine->core()->identifierTreeMutex));
    }

    Names fetched;
    std::function<void()> action;
    const std::string begun = Notification::identifierCandidateChildrenUpdateBegun;
    const std::string ended = Notification::identifierCandidateChildrenUpdateEnded;
};

TEST_F(RefreshTest, APathIsFetchedFromTheRootDownAsFarAsItExistsAndAgainOnlyWithForce) {
    EXPECT_EQ(refresh({"a", "unknown"}, false), (Names{"root", "a"}));
    EXPECT_EQ(refresh({"unknown", "x"}, false), Names{});
    EXPECT_EQ(refresh({}, false), Names{});
    EXPECT_EQ(refresh({"a", "ab"}, false), Names{"ab"});
    EXPECT_EQ(refresh({"a", "ab"}, true), Names{"ab"});  // force is for the end of the path only
    EXPECT_EQ(refresh({}, true), Names{"root"});
}

TEST_F(RefreshTest, RequestsOfOneRunAreFetchedParentsFirstEachFramedByItsNotifications) {
    QBIdentifierCandidate* const schema = add(nullptr, "s");
    engine->addRefreshIdentifierCandidateChildrenRequest({"s", "sa"}, true);
    engine->addRefreshIdentifierCandidateChildrenRequest(schema, true);
    engine->addRefreshRootIdentifierCandidateChildrenRequest(true);
    EXPECT_EQ(runRequests(), (Names{"root", "s", "sa"}));
    EXPECT_EQ(engine->notices.at(0).parameters.at("ident").toPointer(), nullptr);
    EXPECT_EQ(engine->notices.at(3).parameters.at("ident").toPointer(), schema);
    EXPECT_EQ(engine->takeNames(), (Names{begun, ended, begun, ended, begun, ended}));
    EXPECT_EQ(runRequests(), Names{});  // the queue was emptied
}

TEST_F(RefreshTest, AListenerMayRefreshAgainFromWithinARunOnTheMainThread) {
    bool isNested = false;
    engine->registerNotifyChangeListener(ended, [&](const std::string&, const auto*) {
        if (std::exchange(isNested, true)) return;
        engine->addRefreshIdentifierCandidateChildrenRequest({"a"}, false);
        engine->refreshRequestedIdentifierCandidateChildren(false);
    });
    EXPECT_EQ(refresh({}, false), (Names{"root", "a"}));
}

TEST_F(RefreshTest, ARunOffTheMainThreadNotifiesOnTheMainThreadAndIsCounted) {
    const auto mainThread = std::this_thread::get_id();
    for (const std::string& name : {begun, ended}) {
        engine->registerNotifyChangeListener(name, [&](const std::string&, const auto*) {
            EXPECT_EQ(std::this_thread::get_id(), mainThread);
            EXPECT_TRUE(engine->isRefreshingIdentifierCandidateChildren());
        });
    }
    action = [mainThread] {
        EXPECT_NE(std::this_thread::get_id(), mainThread);
    };
    engine->addRefreshRootIdentifierCandidateChildrenRequest(false);
    engine->refreshRequestedIdentifierCandidateChildren(true);
    EXPECT_TRUE(engine->isRefreshingIdentifierCandidateChildren());
    host.finishWorkers();
    expectFramedAndNothingHeld();
}

TEST_F(RefreshTest, AnUpdaterThatThrowsOrIsMissingEndsTheRunAndTheNextOneWorks) {
    action = [] {
        throw std::string("connection lost");
    };
    engine->addRefreshIdentifierCandidateChildrenRequest({"left", "over"}, false);
    EXPECT_THROW(refresh({}, true), std::string);
    expectFramedAndNothingHeld();
    action = nullptr;
    EXPECT_EQ(refresh({}, true), Names{"root"});
    engine->notices.clear();
    engine->registerIdentifierCandidateChildrenUpdater(nullptr);
    EXPECT_EQ(protocolErrorOf([&] { refresh({}, true); }), "identCand: Updater not set");
    expectFramedAndNothingHeld();
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
