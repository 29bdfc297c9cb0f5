#include "canvas/diagram/auto_layout.h"

#include <algorithm>
#include <utility>

#include "canvas/diagram/auto_layout_order.h"
#include "canvas/diagram/auto_layout_parts.h"
#include "canvas/diagram/auto_layout_place.h"

namespace QB::DiagramLumo {
namespace {

using namespace AutoLayout;

/// Spent on the orders of one layout: below a tenth of a second for 100 boxes, and linear.
constexpr int64_t effortPerBox = 150'000;

/// Above this many links the crossings of a part are taken from its order, which counts them for
/// boxes of one width, and not from its lines.
constexpr Index linksCountedAsLines = 500;

LayoutGraph graphOf(const Part& part, const std::vector<LumoSize>& sizes) {
    LayoutGraph graph{sizes, {}};
    for (Index box = 0; box < part.neighbours.size(); ++box)
        for (Index other : part.neighbours[box])
            if (box < other)
                graph.edges.push_back({static_cast<int>(box), static_cast<int>(other)});
    return graph;
}

Block placePart(const Part& part, const std::vector<LumoSize>& sizes, const LayoutSpacing& spacing,
                Effort& effort) {
    constexpr Index compared = 4;
    const std::vector<LayerOrder> orders = bestOrders(part.neighbours, compared, effort);
    Block best = placeLayers(part, orders.front().layers(), sizes, spacing);
    const LayoutGraph graph = graphOf(part, sizes);
    if (orders.size() == 1 || graph.edges.size() > linksCountedAsLines) return best;
    int fewest = countCrossings(graph, best.origins);
    for (Index i = 1; i < orders.size() && fewest > 0; ++i) {
        Block block = placeLayers(part, orders[i].layers(), sizes, spacing);
        const int crossings = countCrossings(graph, block.origins);
        if (crossings >= fewest) continue;
        fewest = crossings;
        best = std::move(block);
    }
    return best;
}

std::vector<LumoSize> sizesOf(const Part& part, const LayoutGraph& graph) {
    std::vector<LumoSize> sizes;
    for (Index box : part.boxes)
        sizes.push_back(
            {std::max(0, graph.boxes[box].width), std::max(0, graph.boxes[box].height)});
    return sizes;
}

/// From (0, 0).
std::vector<LumoPoint> placeAll(const LayoutGraph& graph, const LayoutSpacing& spacing) {
    Effort effort(effortPerBox * static_cast<int64_t>(graph.boxes.size()));
    std::vector<Block> blocks;
    for (const Part& part : connectedParts(graph))
        blocks.push_back(placePart(part, sizesOf(part, graph), spacing, effort));
    const std::vector<LumoPoint> corners = packInRows(blocks, spacing);
    std::vector<LumoPoint> origins(graph.boxes.size());
    for (Index block = 0; block < blocks.size(); ++block)
        for (Index i = 0; i < blocks[block].boxes.size(); ++i)
            origins[blocks[block].boxes[i]] = corners[block] + blocks[block].origins[i];
    return origins;
}

LumoSize extentOf(const LayoutGraph& graph, const std::vector<LumoPoint>& origins) {
    LumoSize extent;
    for (Index box = 0; box < origins.size(); ++box) {
        extent.width = std::max(extent.width, origins[box].x + graph.boxes[box].width);
        extent.height = std::max(extent.height, origins[box].y + graph.boxes[box].height);
    }
    return extent;
}

std::vector<LumoPoint> movedTo(LumoPoint corner, std::vector<LumoPoint> origins) {
    for (LumoPoint& origin : origins)
        origin += corner;
    return origins;
}

}  // namespace

std::vector<LumoPoint> layoutInLayers(const LayoutGraph& graph, const LayoutSpacing& spacing) {
    return movedTo(spacing.start, placeAll(graph, spacing));
}

std::vector<LumoPoint> layoutBeside(const LayoutGraph& graph, LumoPoint wanted,
                                    const std::vector<LumoRect>& taken,
                                    const LayoutSpacing& spacing) {
    std::vector<LumoPoint> origins = placeAll(graph, spacing);
    const LumoSize extent = extentOf(graph, origins);
    return movedTo(nearestFreePlace(extent, wanted, taken, spacing), std::move(origins));
}

}  // namespace QB::DiagramLumo
