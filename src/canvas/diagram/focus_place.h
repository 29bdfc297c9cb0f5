#pragma once

#include "platform/lumo/lumo_types.h"

namespace QB::DiagramLumo {

class QBLumoDiagram;
class QBLumoJoinLink;

/// Where the object or row with the keyboard focus lies, in the diagram's space: what the focus
/// ring surrounds and what must be scrolled into view. A default rectangle if nothing has the
/// focus.
LumoRect focusPlace(const QBLumoDiagram* diagram);

/// How far the ring reaches beyond its place at the smallest zoom.
inline constexpr int focusRingReach = 12;
/// Around the symbol of a link, in the diagram's space.
LumoRect symbolPlace(const QBLumoJoinLink* link);

}  // namespace QB::DiagramLumo
