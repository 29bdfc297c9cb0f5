#include "model/liveness.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <future>
#include <thread>
#include <vector>

#include "is_alive.h"
#include "model/components.h"

using namespace QB;
using QB::Test::isAlive;

TEST(Liveness, AComponentNeverGetsTheIdOfOneThatIsGone) {
    auto first = std::make_unique<Component::SQL::SQLFieldColumnComponent>();
    const long gone = first->id();
    EXPECT_TRUE(isAlive(gone));
    first.reset();
    const Component::SQL::SQLFieldColumnComponent second;
    EXPECT_NE(second.id(), gone);
    EXPECT_FALSE(isAlive(gone) || isAlive(-1));
    EXPECT_THROW(runIfAlive(second.id(), nullptr), std::bad_function_call);
}

TEST(Liveness, ABlockMayEnterAgainAndRetireItsOwnId) {
    const long id = issueId();
    std::vector<bool> seen;
    runIfAlive(id, [&](bool alive) {
        seen.push_back(alive);
        runIfAlive(id, [&](bool inner) {
            seen.push_back(inner);
            retireId(id);
        });
        seen.push_back(isAlive(id));
    });
    EXPECT_EQ(seen, (std::vector<bool>{true, true, false}));
}

TEST(Liveness, RetiringWaitsForTheBlockOfAnotherThreadAlsoIfItThrows) {
    const long id = issueId();
    std::promise<void> entered;
    std::atomic<bool> isBlockOver{false};
    const auto block = [&](bool alive) {
        EXPECT_TRUE(alive);
        entered.set_value();
        // The id is dead for everybody as soon as retireId waits for this block, which holds no
        // lock: otherwise this hangs.
        while (isAlive(id))
            std::this_thread::yield();
        isBlockOver = true;
        throw std::runtime_error("seeded");
    };
    std::thread user([&] { EXPECT_THROW(runIfAlive(id, block), std::runtime_error); });
    entered.get_future().wait();
    retireId(id);  // hangs if the pin stayed
    EXPECT_TRUE(isBlockOver);
    user.join();
}
