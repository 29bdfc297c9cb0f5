#pragma once

#include <utility>
#include <vector>

#include "canvas/diagram/auto_layout.h"
#include "canvas/diagram/auto_layout_order.h"

/// A graph made clean, and its connected parts.
namespace QB::DiagramLumo::AutoLayout {

/// Links between two boxes that exist, the lower index first, each once, ascending.
std::vector<std::pair<Index, Index>> distinctLinks(const LayoutGraph& graph);

/// Boxes that links connect; inside of it they are counted from 0.
struct Part {
    std::vector<Index> boxes;  // by index of the graph, ascending
    Neighbours neighbours;
};

/// By the first box of each.
std::vector<Part> connectedParts(const LayoutGraph& graph);

}  // namespace QB::DiagramLumo::AutoLayout
