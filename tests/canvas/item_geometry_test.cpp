#include <gtest/gtest.h>

#include "canvas/items/item_geometry.h"

namespace QB::DiagramLumo {
namespace {

TEST(ItemGeometry, DragsTheRectangleInsideTheCanvas) {
    constexpr int32_t move = 0;
    constexpr int32_t bottomRight = EdgeRight | EdgeBottom;
    constexpr int32_t topLeft = EdgeLeft | EdgeTop;
    const LumoRect start(100, 100, 200, 100);
    const struct {
        const char* what;
        int32_t edges;
        bool keepShape;
        LumoPoint delta;
        LumoRect expected;
    } cases[] = {
        {"moves", move, false, {30, -20}, {130, 80, 200, 100}},
        {"the longer way with shift", move, true, {30, -20}, {130, 100, 200, 100}},
        {"down, with shift", move, true, {5, 40}, {100, 140, 200, 100}},
        {"both with shift", move, true, {7, 7}, {107, 107, 200, 100}},
        {"stops a move at the left and top", move, false, {-150, -140}, {0, 0, 200, 100}},
        {"stops right and bottom", move, false, {740, 640}, {800, 700, 200, 100}},
        {"widens to the right", EdgeRight, false, {50, 99}, {100, 100, 250, 100}},
        {"widens to the left", EdgeLeft, false, {-50, 99}, {50, 100, 250, 100}},
        {"keeps the right edge at the least width", EdgeLeft, false, {500, 0}, {252, 100, 48, 100}},
        {"keeps the bottom edge at the least height", EdgeTop, false, {0, 95}, {100, 162, 200, 38}},
        {"stops the left edge at the canvas", EdgeLeft, false, {-150, 0}, {0, 100, 300, 100}},
        {"stops the bottom edge at the canvas", EdgeBottom, false, {0, 690}, {100, 100, 200, 700}},
        {"drags a corner", EdgeRight | EdgeBottom, false, {20, -10}, {100, 100, 220, 90}},
        {"ratio at a corner", bottomRight, true, {100, 10}, {100, 100, 300, 150}},
        {"ratio by the larger", bottomRight, true, {10, -50}, {100, 100, 100, 50}},
        {"keeps the ratio at one edge", EdgeRight, true, {100, 0}, {100, 100, 300, 150}},
        {"ratio, far corner", topLeft, true, {-50, 0}, {50, 75, 250, 125}},
        {"ratio at the canvas", topLeft, true, {-150, -150}, {0, 50, 300, 150}},
        {"keeps the ratio at the minimum", EdgeRight, true, {-190, 0}, {100, 100, 76, 38}},
    };
    for (const auto& c : cases) {
        const LumoPoint from{150, 110};
        const ItemDrag drag{start, from, c.edges, c.keepShape, {48, 38}, {0, 0, 1000, 800}};
        const LumoRect rect = draggedRect(drag, from + c.delta);
        EXPECT_EQ(rect, c.expected) << c.what << ": " << rect.origin.x << "," << rect.origin.y
                                    << " " << rect.size.width << "x" << rect.size.height;
    }
}

}  // namespace
}  // namespace QB::DiagramLumo
