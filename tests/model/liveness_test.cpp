#include "model/liveness.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <future>
#include <thread>
#include <vector>

#include "model/components.h"

namespace {

bool isAlive(long id) {
    bool result = false;
    QB::runIfAlive(id, [&result](bool alive) { result = alive; });
    return result;
}

}  // namespace

TEST(Liveness, AnIdThatWasNeverIssuedAndOneRetiredTwiceAreDead) {
    EXPECT_FALSE(isAlive(-1));
    const long id = QB::issueId();
    QB::retireId(id);
    QB::retireId(id);
    EXPECT_FALSE(isAlive(id));
}

TEST(Liveness, AnEmptyBlockIsRefused) {
    EXPECT_THROW(QB::runIfAlive(1, nullptr), std::bad_function_call);
}

TEST(Liveness, AComponentNeverGetsTheIdOfOneThatIsGone) {
    auto first = std::make_unique<QB::Component::SQL::SQLFieldColumnComponent>();
    const long gone = first->id();
    EXPECT_TRUE(isAlive(gone));
    first.reset();
    const QB::Component::SQL::SQLFieldColumnComponent second;
    EXPECT_NE(second.id(), gone);
    EXPECT_FALSE(isAlive(gone));
}

TEST(Liveness, ABlockMayEnterAgainAndRetireItsOwnId) {
    const long id = QB::issueId();
    std::vector<bool> seen;
    QB::runIfAlive(id, [&](bool alive) {
        seen.push_back(alive);
        QB::runIfAlive(id, [&](bool inner) {
            seen.push_back(inner);
            QB::retireId(id);
        });
        seen.push_back(isAlive(id));
    });
    EXPECT_EQ(seen, (std::vector<bool>{true, true, false}));
}

TEST(Liveness, NoLockIsHeldDuringABlockSoThatOthersCreateAndDestroyComponents) {
    const long id = QB::issueId();
    QB::runIfAlive(id, [](bool) {
        // Waits for another thread that uses the registry: hangs if the block held its lock.
        std::async(std::launch::async, [] { QB::retireId(QB::issueId()); }).get();
    });
    QB::retireId(id);
}

TEST(Liveness, RetiringWaitsForTheBlockOfAnotherThread) {
    const long id = QB::issueId();
    std::promise<void> entered;
    std::atomic<bool> isBlockOver{false};
    std::thread user([&] {
        QB::runIfAlive(id, [&](bool alive) {
            EXPECT_TRUE(alive);
            entered.set_value();
            // The id is dead for everybody as soon as retireId waits for this block.
            while (isAlive(id))
                std::this_thread::yield();
            isBlockOver = true;
        });
    });
    entered.get_future().wait();
    QB::retireId(id);
    EXPECT_TRUE(isBlockOver);
    user.join();
}

TEST(Liveness, ABlockThatThrowsLetsGoOfTheId) {
    const long id = QB::issueId();
    std::thread thrower([id] {
        EXPECT_THROW(QB::runIfAlive(id, [](bool) { throw std::runtime_error("seeded"); }),
                     std::runtime_error);
    });
    thrower.join();
    QB::retireId(id);  // hangs if the pin stayed
    EXPECT_FALSE(isAlive(id));
}

TEST(Liveness, ManyThreadsMayIssuePinAndRetireTheSameIds) {
    std::vector<long> ids;
    for (int i = 0; i < 50; ++i)
        ids.push_back(QB::issueId());
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&ids] {
            for (const long id : ids) {
                QB::runIfAlive(id, [](bool) { QB::retireId(QB::issueId()); });
                QB::retireId(id);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (const long id : ids)
        EXPECT_FALSE(isAlive(id));
}
