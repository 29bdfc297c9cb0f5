#pragma once

#include <vector>

#include "platform/lumo/lumo_types.h"

namespace QB::DiagramLumo {

/// A diagram as the automatic layout sees it: boxes by index and links between them, without a
/// direction. Links between a box and itself, or to no box, are ignored; several between the same
/// two boxes lie on one line and count as one. A negative size counts as 0.
struct LayoutGraph {
    struct Edge {
        int from = 0;
        int to = 0;
    };
    std::vector<LumoSize> boxes;
    std::vector<Edge> edges;
};

/// Distances in pixels. Two boxes stand at least `between` apart from left to right, or at least
/// `below` from top to bottom.
struct LayoutSpacing {
    int between = 100;        // side by side: room for the symbol of a link
    int below = 40;           // one above the other
    LumoPoint start{40, 40};  // the top left corner of everything
};

/// Places the boxes in layers from left to right by join depth: the distance from the root of each
/// connected part. The root is the box from which the fewest lines cross; of several the one with
/// the most links, then the first: so a schema opens from its hub, and a chain from an inner table.
/// Boxes never overlap, no line runs behind a box of the same width, every box stands at the middle
/// height of its neighbours where there is room. Parts without a link between them stand in rows,
/// the tallest first, boxes without any link behind them. Pure and deterministic: the same graph
/// gives the same places. Any thread. Shape: one origin for each box, by index; none is left of or
/// above spacing.start. Cost: 100 boxes well under 200 ms; the search for fewer crossings is
/// bounded, all else grows linearly in boxes and links, but for sorting.
std::vector<LumoPoint> layoutInLayers(const LayoutGraph& graph, const LayoutSpacing& spacing = {});

/// The same for some boxes of a diagram whose others stay: the block of all of them is put at the
/// free place nearest to @p wanted, its top left corner, clear of every rectangle in @p taken.
std::vector<LumoPoint> layoutBeside(const LayoutGraph& graph, LumoPoint wanted,
                                    const std::vector<LumoRect>& taken,
                                    const LayoutSpacing& spacing = {});

/// The top left corner nearest to @p wanted, and not left of or above spacing.start, at which a
/// rectangle of @p size keeps the distances of @p spacing from every rectangle in @p taken.
LumoPoint nearestFreePlace(LumoSize size, LumoPoint wanted, const std::vector<LumoRect>& taken,
                           const LayoutSpacing& spacing = {});

/// Where the line of a link leaves a box: beside it, at the middle height of its title.
constexpr int linkEndBeside = 2;
constexpr int linkEndBelow = 19;

/// How often links cross as a user sees them: as straight lines between the sides that face each
/// other, the right sides of both if their middles stand one above the other. Two links cross when
/// they meet anywhere but at a box that they share; links that share one, when they cover each
/// other. Cost: quadratic in the links; for tests and measurements, and for small parts.
int countCrossings(const LayoutGraph& graph, const std::vector<LumoPoint>& origins);

}  // namespace QB::DiagramLumo
