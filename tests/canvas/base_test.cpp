#include <gtest/gtest.h>

#include "canvas/base/animation.h"
#include "canvas/base/context.h"
#include "canvas/base/object.h"

namespace QB::DiagramLumo {
namespace {

/// A child at (10, 20, 30, 40) of a parent of 100 x 100.
TEST(MarginConstraint, KeepsWhatItsMaskSaysAndRecoversFromASqueeze) {
    const struct {
        int mask;
        LumoRect bigger;    // in a parent of 200 x 150
        LumoRect squeezed;  // in a parent of 10 x 10
    } cases[] = {{0, {10, 20, 30, 40}, {10, 20, 30, 40}},
                 {MarginLeft | MarginTop, {10, 20, 30, 40}, {10, 20, 30, 40}},
                 {MarginRight, {110, 20, 30, 40}, {-80, 20, 30, 40}},
                 {MarginBottom, {10, 70, 30, 40}, {10, -70, 30, 40}},
                 {MarginAll, {10, 20, 130, 90}, {10, 20, 0, 0}}};
    for (const auto& [mask, bigger, squeezed] : cases) {
        QBLumoObject parent;
        parent.setRect({0, 0, 100, 100});
        auto* const child = new QBLumoObject;
        child->setRect({10, 20, 30, 40});
        child->setMarginConstraint(mask);
        parent.addChild(child);
        for (const LumoRect& size : {LumoRect(0, 0, 200, 150), {0, 0, 10, 10}, {0, 0, 200, 150}}) {
            parent.setRect(size);
            parent.setRequireToVerifyLayout(true);
            parent.layout();
            EXPECT_EQ(child->getRect(), size.size.width > 10 ? bigger : squeezed) << mask;
        }
        parent.setRect({5, 5, 200, 150});
        child->setRect({1, 2, 3, 4});
        parent.layout();
        EXPECT_EQ(child->getRect(), LumoRect(1, 2, 3, 4)) << "a move keeps no margins";
    }
}

TEST(Animation, RunsToItsEndWhileOthersComeAndGo) {
    LumoObject owner;
    QBLumoAnimationTimer timer(nullptr, &owner);
    QBLumoAnimation first(1.0);
    auto second = std::make_unique<QBLumoAnimation>(2.0);
    QBLumoAnimation instant(0.0);
    int calls = 0;
    first.setUpdateFunction([&](QBLumoAnimation*) {
        if (++calls == 3) second.reset();  // in the middle of a tick
    });
    timer.playAnimation(&first);
    EXPECT_EQ(calls, 1);
    timer.step(0.5);
    timer.playAnimation(second.get());
    timer.playAnimation(&instant);
    EXPECT_DOUBLE_EQ(first.elapsed(), 0.5);  // untouched by the others
    timer.step(0.25);
    EXPECT_FALSE(second);
    EXPECT_FALSE(instant.isRunning());
    EXPECT_TRUE(first.isRunning());
    timer.step(9);
    EXPECT_FALSE(first.isRunning());
    EXPECT_DOUBLE_EQ(first.elapsed(), 1.0);
}

TEST(Animation, EndsWithTheTimerOrTheTimerWithoutIt) {
    LumoObject owner;
    QBLumoAnimation survivor(1.0);
    {
        QBLumoAnimationTimer timer(nullptr, &owner);
        timer.playAnimation(&survivor);
        {
            QBLumoAnimation brief(1.0);
            timer.playAnimation(&brief);
        }
        timer.step(0.1);
    }
    EXPECT_FALSE(survivor.isRunning());
}

}  // namespace
}  // namespace QB::DiagramLumo
