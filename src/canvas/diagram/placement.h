#pragma once

#include <vector>

#include "platform/lumo/lumo_types.h"

namespace QB::DiagramLumo {

/// The search for a free place, and the moves of groups; pure, in the diagram's space.

/// No canvas grows beyond this, whatever is asked for.
inline constexpr int32_t largestCanvas = 1 << 27;
/// Where an item's body is placed: top and left.
inline constexpr int32_t placementStart = 40;

struct ProposedRectCheckingResult {
    bool exceedsDiagram = false;
    bool collidesTopRow = false;
    LumoRect topRowBounds;   // of what was hit in the row at y = 40
    LumoRect collidedUnion;  // of all that was hit
};
/// True if @p proposed is free: inside @p diagram and off all @p items.
bool checkProposedRect(const LumoRect& proposed, const LumoRect& diagram,
                       const std::vector<LumoRect>& items, ProposedRectCheckingResult* result);

struct Placement {
    LumoRect rect;
    LumoSize diagram;  // grown if the row ran out or the rectangle is too tall
};
/// The first free place to the right in the row at y = 40: 100 behind what stands in that row, 80
/// behind what reaches into it. The canvas widens by 3000 when the row runs out and grows in height
/// to hold what is taller; no search is without an end: negative sizes count as 0, and where the
/// largest canvas is full the place is at its right edge, free or not.
Placement findPlace(LumoSize size, LumoSize diagram, const std::vector<LumoRect>& items);

/// @p diagram grown as far as it must to hold @p content with a margin of 40 below; its width grows
/// in steps of 3000. What lies left of it or above is not made room for.
LumoSize grownToHold(LumoSize diagram, const LumoRect& content);

/// @p delta shortened so that @p group, moved by it, stays inside @p bounds; a group that is larger
/// keeps to the left or the top edge. Crossing the top edge uses the left edge's value; both are 0
/// in a diagram.
LumoPoint clampedGroupDelta(const LumoRect& group, LumoPoint delta, const LumoRect& bounds);

/// The step of an auto-scroll for a pointer at @p distance beyond the edge (negative: before it).
int autoScrollStep(int distance);
/// The step on both axes for a @p point outside of @p inner, (0, 0) inside.
LumoPoint autoScrollStep(LumoPoint point, const LumoRect& inner);

/// The rectangle of a rubber band.
LumoRect rubberBandRect(LumoPoint start, LumoPoint end);

/// Rectangles in reading order: rows from top to bottom, each from left to right. A row takes in
/// what begins above the middle of its first rectangle. Returns indices; equal ones keep their
/// order.
std::vector<size_t> readingOrder(const std::vector<LumoRect>& rects);

}  // namespace QB::DiagramLumo
