#pragma once

#include <vector>

#include "canvas/diagram/auto_layout_parts.h"

/// From orders to coordinates.
namespace QB::DiagramLumo::AutoLayout {

/// Boxes placed together, from (0, 0).
struct Block {
    std::vector<Index> boxes;  // by index of the graph
    std::vector<LumoPoint> origins;
    LumoSize size;
};

/// Columns from left to right, the boxes of each on one middle line; @p sizes by box of the part.
/// From top to bottom the links are as level as the order and the distances allow: the least sum of
/// squares, layer by layer by isotonic regression (pool adjacent violators).
Block placeLayers(const Part& part, const Layers& layers, const std::vector<LumoSize>& sizes,
                  const LayoutSpacing& spacing);

/// Corners for the blocks in rows from left to right, about as wide as a screen in proportion to
/// its height. Boxes without links come last and start a row of their own.
std::vector<LumoPoint> packInRows(const std::vector<Block>& blocks, const LayoutSpacing& spacing);

}  // namespace QB::DiagramLumo::AutoLayout
