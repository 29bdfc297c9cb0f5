#pragma once

#include <vector>

#include "platform/lumo/lumo_types.h"

namespace QB::DiagramLumo {

/// A diagram as the automatic layout sees it: boxes by index and undirected edges between them.
/// Edges between a box and itself, or to no box, are ignored; several between two count once for
/// each crossing.
struct LayoutGraph {
    struct Edge {
        int from = 0;
        int to = 0;
    };
    std::vector<LumoSize> boxes;
    std::vector<Edge> edges;
};

/// Distances in pixels.
struct LayoutSpacing {
    int between = 100;        // side by side: room for the symbol of a link
    int below = 40;           // one above the other, in one layer
    LumoPoint start{40, 40};  // the top left corner of everything
};

/// Places the boxes in layers from left to right by join depth: the distance from the root of each
/// connected part. Boxes never overlap, few edges cross, parts without an edge between them stand
/// below one another. Pure and deterministic: the same graph gives the same places.
/// Shape: one origin for each box, by index; none is left of or above spacing.start.
/// Cost: 100 boxes well under 200 ms.
std::vector<LumoPoint> layoutInLayers(const LayoutGraph& graph, const LayoutSpacing& spacing = {});

/// How often straight lines between the middles of the facing sides cross, as a user sees it.
/// Quadratic in the edges; for tests and measurements.
int countCrossings(const LayoutGraph& graph, const std::vector<LumoPoint>& origins);

}  // namespace QB::DiagramLumo
