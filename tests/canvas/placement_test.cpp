#include "canvas/diagram/placement.h"

#include <limits>

#include <gtest/gtest.h>

namespace QB::DiagramLumo {

namespace {

constexpr LumoSize table{218, 238};
constexpr LumoSize canvas{3000, 1600};
constexpr int32_t huge = std::numeric_limits<int32_t>::max();

std::string text(const LumoRect& rect) {
    return std::to_string(rect.origin.x) + "," + std::to_string(rect.origin.y) + " " +
           std::to_string(rect.size.width) + "x" + std::to_string(rect.size.height);
}

}  // namespace

TEST(Placement, StepsOverWhatStandsInTheWay) {
    const struct {
        const char* what;
        std::vector<LumoRect> items;
        LumoSize size, canvasBefore;
        const char* place;
        const char* canvasAfter;
    } cases[] = {
        {"nothing", {}, table, canvas, "40,40 218x238", "3000x1600"},
        {"elsewhere: 80", {{200, 100, 218, 238}}, table, canvas, "498,40 218x238", "3000x1600"},
        {"both rows at once: 100 behind the top one",
         {{40, 40, 218, 238}, {100, 200, 218, 238}},
         table,
         canvas,
         "358,40 218x238",
         "3000x1600"},
        {"the top row, then what reaches into it",
         {{40, 40, 218, 238}, {350, 200, 218, 238}},
         table,
         canvas,
         "648,40 218x238",
         "3000x1600"},
        {"too narrow",
         {{40, 40, 100, 50}, {400, 40, 100, 50}},
         table,
         canvas,
         "600,40 218x238",
         "3000x1600"},
        {"far below", {{40, 278, 218, 238}}, table, canvas, "40,40 218x238", "3000x1600"},
        {"no size",
         {{40, 40, 0, 0}, {40, 40, -5, 90}},
         table,
         canvas,
         "40,40 218x238",
         "3000x1600"},
        {"too tall", {}, {218, 2000}, canvas, "40,40 218x2000", "3000x2080"},
        {"a height of 10", {{40, 40, 218, 238}}, table, {3000, 10}, "358,40 218x238", "3000x318"},
        {"too wide", {}, {7000, 100}, canvas, "40,40 7000x100", "9000x1600"},
        {"below nothing", {}, {-5, -5}, {-10, -10}, "40,40 0x0", "3000x80"},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.what);
        const Placement place = findPlace(test.size, test.canvasBefore, test.items);
        EXPECT_EQ(text(place.rect), test.place);
        EXPECT_EQ(text({{0, 0}, place.diagram}).substr(4), test.canvasAfter);
    }
}

TEST(Placement, EndsForAnyNumbers) {
    const std::vector<LumoRect> wall = {{0, 0, huge, huge},
                                        {-huge, -huge, huge, huge},
                                        {huge, 40, huge, 1},
                                        {40, 40, largestCanvas, 10}};
    for (const LumoSize size : {LumoSize{1, 1}, LumoSize{huge, huge}, LumoSize{-huge, 40}}) {
        const Placement place = findPlace(size, {huge, huge}, wall);
        EXPECT_TRUE(lumoContainsRect({{0, 0}, place.diagram}, place.rect)) << text(place.rect);
        EXPECT_LE(place.diagram.width, largestCanvas);
        EXPECT_LE(place.diagram.height, largestCanvas);
    }
}

TEST(Placement, StopsAGroupAtTheEdges) {
    const LumoRect bounds{0, 0, 1000, 800};
    struct Case {
        LumoRect group;
        LumoPoint delta;
        LumoPoint expected;
    };
    const std::vector<Case> cases = {
        {{100, 100, 200, 200}, {50, 60}, {50, 60}},
        {{100, 120, 200, 200}, {-500, -500}, {-100, -120}},
        {{100, 120, 200, 200}, {5000, 5000}, {700, 480}},
        {{100, 120, 200, 200}, {-100, 480}, {-100, 480}},
        {{10, 0, 2000, 100}, {-30, 5}, {-10, 5}},  // larger than the canvas: to its left
        {{-40, 0, 100, 100}, {10, 0}, {40, 0}},    // moved out by keys: back in
    };
    for (const Case& test : cases)
        EXPECT_EQ(clampedGroupDelta(test.group, test.delta, bounds), test.expected)
            << text(test.group);
    // The top edge takes the left edge's value.
    EXPECT_EQ(clampedGroupDelta({60, 40, 10, 10}, {0, -30}, {50, 20, 500, 500}),
              (LumoPoint{0, 10}));
}

TEST(Placement, ScrollsFasterTheFartherThePointerIs) {
    const std::vector<std::pair<int, int>> steps = {
        {0, 0}, {1, 1}, {2, 1}, {3, 1}, {5, 1}, {6, 2}, {99, 33}, {100, 33}, {101, 33}, {5000, 33}};
    for (const auto& [distance, step] : steps) {
        EXPECT_EQ(autoScrollStep(distance), step);
        EXPECT_EQ(autoScrollStep(-distance), -step);
    }
    const LumoRect inner{15, 15, 100, 50};
    EXPECT_EQ(autoScrollStep({15, 64}, inner), (LumoPoint{0, 0}));
    EXPECT_EQ(autoScrollStep({14, 65}, inner), (LumoPoint{-1, 1}));
    EXPECT_EQ(autoScrollStep({144, 0}, inner), (LumoPoint{10, -5}));
}

}  // namespace QB::DiagramLumo
