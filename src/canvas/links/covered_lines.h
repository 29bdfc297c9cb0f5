#pragma once

#include "platform/lumo/lumo_types.h"

class LumoPainter;

namespace QB::DiagramLumo {

class QBLumoDiagram;

/// Paints, over the items, what they hide of the lines of links: these shine through, but not where
/// a title's text stands, so that each can be followed from end to end. Clicks there are still the
/// item's.
/// @p painter and @p rect, the part that is painted, are in the diagram's space; laid out.
void paintCoveredLines(LumoPainter* painter, const QBLumoDiagram* diagram, const LumoRect& rect);

}  // namespace QB::DiagramLumo
