#include "canvas/diagram/auto_layout.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <numeric>
#include <string>

#include "canvas/diagram/auto_layout_order.h"
#include "canvas/diagram/auto_layout_parts.h"
#include "support/dice.h"

namespace QB::DiagramLumo {
namespace {

using AutoLayout::Index;
using Edges = std::vector<LayoutGraph::Edge>;
using Places = std::vector<LumoPoint>;

LumoSize tableOf(int fields) {
    return {218, 38 + 20 * fields};
}

LayoutGraph graphOf(int boxes, Edges edges) {
    return {std::vector<LumoSize>(static_cast<Index>(boxes), tableOf(10)), std::move(edges)};
}

LayoutGraph randomGraph(int seed, int boxes, int edges) {
    QB::Test::Dice dice(seed);
    LayoutGraph graph = graphOf(boxes, {});
    for (LumoSize& size : graph.boxes)
        size = {150 + dice.pick(100), tableOf(3 + dice.pick(8)).height};
    for (int i = 0; i < edges; ++i)
        graph.edges.push_back({dice.pick(boxes), dice.pick(boxes)});
    return graph;
}

LayoutGraph randomTree(int seed, int boxes) {
    QB::Test::Dice dice(seed);
    LayoutGraph graph = graphOf(boxes, {});
    for (int box = 1; box < boxes; ++box)
        graph.edges.push_back({box, dice.pick(box)});
    return graph;
}

bool areApart(int begin, int size, int otherBegin, int otherSize, int distance) {
    return begin + size + distance <= otherBegin || otherBegin + otherSize + distance <= begin;
}

/// What is wrong with the places, or nothing.
std::string faultOf(const LayoutGraph& graph, const Places& places, const LayoutSpacing& spacing) {
    if (places.size() != graph.boxes.size()) return "not a place for each box";
    for (Index a = 0; a < places.size(); ++a) {
        if (places[a].x < spacing.start.x || places[a].y < spacing.start.y)
            return "box " + std::to_string(a) + " is before the start";
        for (Index b = 0; b < a; ++b) {
            const LumoSize size = graph.boxes[a];
            const LumoSize other = graph.boxes[b];
            if (!areApart(places[a].x, size.width, places[b].x, other.width, spacing.between) &&
                !areApart(places[a].y, size.height, places[b].y, other.height, spacing.below))
                return "boxes " + std::to_string(a) + " and " + std::to_string(b) + " are too near";
        }
    }
    return {};
}

/// The columns of a part, counted from its leftmost box, must be the distances from that box.
std::string faultOfLayers(const LayoutGraph& graph, const Places& places) {
    for (const AutoLayout::Part& part : AutoLayout::connectedParts(graph)) {
        std::map<int, Index> columns;
        std::vector<int> middles;
        for (Index box : part.boxes) {
            middles.push_back(places[box].x + graph.boxes[box].width / 2);
            columns[middles.back()] = 0;
        }
        Index next = 0;
        for (auto& [middle, column] : columns)
            column = next++;
        const auto root = std::min_element(middles.begin(), middles.end()) - middles.begin();
        const AutoLayout::LayerOrder order(part.neighbours, static_cast<Index>(root));
        for (Index layer = 0; layer < order.layers().size(); ++layer)
            for (Index box : order.layers()[layer])
                if (columns[middles[box]] != layer)
                    return "box " + std::to_string(part.boxes[box]) + " is not in its layer";
    }
    return {};
}

struct GraphCase {
    const char* name;
    LayoutGraph graph;
    int crossings;  // the fewest that there can be in layers; -1: nothing is known
};

std::vector<GraphCase> graphCases() {
    const int tall = 100'000;
    std::vector<GraphCase> cases{
        {"nothing", {}, 0},
        {"one", graphOf(1, {}), 0},
        {"without links", graphOf(30, {}), 0},
        {"linked to itself", graphOf(2, {{0, 0}, {0, 1}, {1, 1}}), 0},
        {"linked to no box", graphOf(2, {{0, 2}, {-1, 0}, {0, 1}, {2'000'000'000, -7}}), 0},
        {"linked twice", graphOf(3, {{0, 1}, {1, 0}, {0, 1}, {1, 2}}), 0},
        {"a chain", graphOf(5, {{0, 1}, {1, 2}, {2, 3}, {3, 4}}), 0},
        {"a star", graphOf(6, {{0, 5}, {1, 5}, {2, 5}, {3, 5}, {4, 5}}), 0},
        {"a triangle", graphOf(3, {{0, 1}, {1, 2}, {2, 0}}), 0},
        {"a ring", graphOf(7, {{0, 1}, {1, 2}, {2, 3}, {3, 4}, {4, 5}, {5, 6}, {6, 0}}), 0},
        {"a grid", graphOf(6, {{0, 1}, {1, 2}, {3, 4}, {4, 5}, {0, 3}, {1, 4}, {2, 5}}), 0},
        {"three by three",
         graphOf(6, {{0, 3}, {0, 4}, {0, 5}, {1, 3}, {1, 4}, {1, 5}, {2, 3}, {2, 4}, {2, 5}}), 3},
        {"two parts", graphOf(6, {{0, 1}, {1, 2}, {4, 5}}), 0},
        {"very tall", {{{218, tall}, {10, tall}, {500, 30}, {1, 1}}, {{0, 1}, {1, 2}, {1, 3}}}, 0},
        {"no extent", {{{0, 0}, {-5, -9}, {218, 238}}, {{0, 1}, {1, 2}}}, 0},
        {"a tree of 150", randomTree(1, 150), 0},
        {"a tree of 40", randomTree(2, 40), 0},
    };
    for (int seed = 1; seed <= 8; ++seed)
        cases.push_back({"random", randomGraph(seed, 5 * seed, 7 * seed), -1});
    return cases;
}

TEST(AutoLayout, KeepsBoxesApartInLayersByJoinDepthAndAlwaysTheSame) {
    const LayoutSpacing spacings[] = {{}, {10, 0, {-300, 7}}};
    for (const GraphCase& entry : graphCases()) {
        SCOPED_TRACE(entry.name);
        for (const LayoutSpacing& spacing : spacings) {
            const Places places = layoutInLayers(entry.graph, spacing);
            EXPECT_EQ(faultOf(entry.graph, places, spacing), "");
            EXPECT_EQ(faultOfLayers(entry.graph, places), "");
            EXPECT_EQ(layoutInLayers(entry.graph, spacing), places);
        }
        if (entry.crossings < 0) continue;
        EXPECT_EQ(countCrossings(entry.graph, layoutInLayers(entry.graph)), entry.crossings);
    }
}

TEST(AutoLayout, IsCheckedByWhatFindsFaults) {
    const LayoutGraph graph = graphOf(3, {{0, 1}, {1, 2}});
    const Places good{{40, 40}, {358, 40}, {676, 40}};
    EXPECT_EQ(faultOf(graph, good, {}) + faultOfLayers(graph, good), "");
    EXPECT_NE(faultOf(graph, {{40, 40}, {357, 79}, {676, 40}}, {}), "");
    EXPECT_NE(faultOf(graph, {{40, 40}, {358, 40}, {676, 39}}, {}), "");
    EXPECT_NE(faultOfLayers(graph, {{40, 40}, {676, 40}, {358, 40}}), "");
}

/// Boxes of one size in columns 318 apart, at rows 278 apart.
int crossingsInGrid(const AutoLayout::Layers& layers, const LayoutGraph& graph) {
    Places places(graph.boxes.size());
    for (Index layer = 0; layer < layers.size(); ++layer)
        for (Index row = 0; row < layers[layer].size(); ++row)
            places[layers[layer][row]] = {318 * int(layer), 278 * int(row)};
    return countCrossings(graph, places);
}

/// Of all orders of all layers from all roots.
int fewestCrossings(const LayoutGraph& graph, const AutoLayout::Neighbours& neighbours) {
    int fewest = std::numeric_limits<int>::max();
    for (Index root = 0; root < neighbours.size(); ++root) {
        AutoLayout::Layers layers = AutoLayout::LayerOrder(neighbours, root).layers();
        for (auto& layer : layers)
            std::sort(layer.begin(), layer.end());
        for (Index turned = 0; turned < layers.size();) {
            if (turned == 0) fewest = std::min(fewest, crossingsInGrid(layers, graph));
            const bool isNew = std::next_permutation(layers[turned].begin(), layers[turned].end());
            turned = isNew ? 0 : turned + 1;
        }
    }
    return fewest;
}

TEST(AutoLayout, CrossesAsRarelyAsTheBestOfAllOrders) {
    int met = 0;
    for (int seed = 1; seed <= 60; ++seed) {
        LayoutGraph graph = randomTree(seed, 7);
        const Edges more = randomGraph(seed, 7, 9).edges;
        graph.edges.insert(graph.edges.end(), more.begin(), more.end());
        const auto parts = AutoLayout::connectedParts(graph);
        const int fewest = fewestCrossings(graph, parts.front().neighbours);
        met += fewest > 0 ? 1 : 0;
        EXPECT_EQ(countCrossings(graph, layoutInLayers(graph)), fewest) << "seed " << seed;
    }
    EXPECT_GT(met, 10) << "too few of these graphs must have crossings";
}

struct CrossingCase {
    const char* name;
    Edges edges;
    int crossings;
};

/// Four boxes in two columns, and two more above one another to the right: their middles in line.
TEST(AutoLayout, CountsWhatAUserSeesCross) {
    const Places places{{0, 0}, {0, 300}, {400, 0}, {400, 300}, {400, 600}, {400, 900}};
    const CrossingCase cases[] = {
        {"level", {{0, 2}, {1, 3}}, 0},
        {"a cross", {{0, 3}, {1, 2}}, 1},
        {"a cross of doubled links", {{0, 3}, {3, 0}, {1, 2}, {1, 2}}, 1},
        {"at a shared box", {{0, 2}, {0, 3}, {1, 3}}, 0},
        {"a neighbour in the column", {{2, 3}, {0, 2}, {0, 3}}, 0},
        {"past a box without links", {{2, 4}, {1, 3}}, 0},
        {"one over the other in the column", {{2, 4}, {3, 5}}, 1},
        {"from one box, covered", {{2, 3}, {2, 4}}, 1},
        {"to either side of one box", {{2, 3}, {3, 4}}, 0},
        {"of no box", {{0, 3}, {1, 2}, {1, 9}, {3, 3}}, 1},
    };
    for (const CrossingCase& entry : cases)
        EXPECT_EQ(countCrossings(graphOf(6, entry.edges), places), entry.crossings) << entry.name;
    // The right sides of a column: what leaves the box between them crosses.
    const Places turned{{400, 0}, {400, 300}, {0, 0}, {0, 300}, {0, 600}, {0, 900}};
    EXPECT_EQ(countCrossings(graphOf(6, {{2, 4}, {3, 1}}), turned), 1);
}

bool isFree(LumoPoint place, LumoSize size, const std::vector<LumoRect>& taken,
            const LayoutSpacing& spacing) {
    LayoutGraph graph{{size}, {}};
    for (const LumoRect& rect : taken) {
        graph.boxes.assign({size, rect.size});
        LayoutSpacing anywhere = spacing;
        anywhere.start = {-10'000, -10'000};
        if (!faultOf(graph, {place, rect.origin}, anywhere).empty()) return false;
    }
    return place.x >= spacing.start.x && place.y >= spacing.start.y;
}

int64_t distance(LumoPoint a, LumoPoint b) {
    const LumoPoint d = a - b;
    return int64_t{d.x} * d.x + int64_t{d.y} * d.y;
}

TEST(AutoLayout, FindsTheNearestFreePlace) {
    const LayoutSpacing spacing{3, 2, {4, 5}};
    for (int seed = 1; seed <= 100; ++seed) {
        QB::Test::Dice dice(seed);
        std::vector<LumoRect> taken;
        for (int i = dice.pick(12); i > 0; --i)
            taken.emplace_back(dice.pick(50), dice.pick(50), 1 + dice.pick(20), 1 + dice.pick(20));
        const LumoSize size{1 + dice.pick(12), 1 + dice.pick(12)};
        const LumoPoint wanted{4 + dice.pick(50), 5 + dice.pick(50)};
        const LumoPoint found = nearestFreePlace(size, wanted, taken, spacing);
        EXPECT_TRUE(isFree(found, size, taken, spacing)) << "seed " << seed;
        for (LumoPoint place; place.y < 100; ++place.y) {
            for (place.x = 0; place.x < 100; ++place.x) {
                if (distance(place, wanted) >= distance(found, wanted)) continue;
                ASSERT_FALSE(isFree(place, size, taken, spacing)) << "seed " << seed;
            }
        }
    }
}

TEST(AutoLayout, PutsSomeBoxesBesideThoseThatStay) {
    const LayoutGraph graph = randomGraph(3, 12, 16);
    const Places alone = layoutBeside(graph, {500, 700}, {});
    EXPECT_EQ(faultOf(graph, alone, {0, 0, {500, 700}}), "");

    const std::vector<LumoRect> taken{{600, 800, 218, 238}, {40, 40, 218, 238}};
    LayoutGraph all = graph;
    Places places = layoutBeside(graph, {500, 700}, taken);
    for (const LumoRect& rect : taken) {
        all.boxes.push_back(rect.size);
        places.push_back(rect.origin);
    }
    EXPECT_EQ(faultOf(all, places, {}), "");
    EXPECT_EQ(layoutBeside(graph, {-900, -9}, {}), layoutInLayers(graph));
}

}  // namespace
}  // namespace QB::DiagramLumo
