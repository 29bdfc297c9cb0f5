#pragma once

#include <vector>

#include "platform/lumo/lumo_types.h"

namespace QB::DiagramLumo {

/// The search for a free place, and the moves of groups; pure, in the diagram's space.

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
/// The first free place to the right in the row at y = 40.
Placement findPlace(LumoSize size, LumoSize diagram, const std::vector<LumoRect>& items);

/// @p delta shortened so that @p group, moved by it, stays inside @p bounds. Crossing the top edge
/// uses the left edge's value; both are 0 in a diagram.
LumoPoint clampedGroupDelta(const LumoRect& group, LumoPoint delta, const LumoRect& bounds);

/// The step of an auto-scroll for a pointer at @p distance beyond the edge (negative: before it).
int autoScrollStep(int distance);
/// The step on both axes for a @p point outside of @p inner, (0, 0) inside.
LumoPoint autoScrollStep(LumoPoint point, const LumoRect& inner);

/// The rectangle of a rubber band.
LumoRect rubberBandRect(LumoPoint start, LumoPoint end);

}  // namespace QB::DiagramLumo
