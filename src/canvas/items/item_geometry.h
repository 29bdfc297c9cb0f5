#pragma once

#include "platform/lumo/lumo_types.h"

namespace QB::DiagramLumo {

/// The numbers of an item; pure. An item is its body with an inset of 9 left and right, 4 above and
/// below.
inline constexpr int itemInsetX = 9;
inline constexpr int itemInsetY = 4;

enum HoverEdge : int32_t { EdgeTop = 1, EdgeBottom = 2, EdgeLeft = 4, EdgeRight = 8 };

LumoRect bodyRectOf(LumoSize item);
LumoSize itemSizeFor(LumoSize body);
/// Which edges of @p body (item space) the pointer would drag.
int32_t hoverEdgesAt(const LumoRect& body, LumoPoint point);
/// The cursor for a mask of edges, 0 for none.
int cursorForEdges(int32_t edges);

/// Everything that a move or a resize depends on, in the diagram's space.
struct ItemDrag {
    LumoRect start;  // the item's rectangle at the press
    LumoPoint startPoint;
    int32_t edges = 0;       // 0: a move
    bool keepShape = false;  // move along one axis only; resize with the ratio of the start
    LumoSize minimum;        // of the item
    LumoRect bounds;         // of the diagram
};
/// The rectangle of the item with the pointer at @p point. It stays inside the bounds: a move stops
/// at the edge, a resize stops with the dragged edge. The minimum wins over the bounds.
LumoRect draggedRect(const ItemDrag& drag, LumoPoint point);

/// What the list of fields keeps free of its body: the title above, and so much at the other sides
/// that the edges for resizing lie outside of the bar.
inline constexpr LumoPadding fieldListInsets{31, 6, 1, 6};  // top, bottom, left, right
inline constexpr int fieldRowHeight = 20;

/// Default sizes of bodies: a table's and a text's.
LumoSize defaultTableBodySize();  // 200 x 237
LumoSize defaultTextBodySize();   // 240 x 120
/// How many rows a table body shows that nobody has resized: whole ones.
inline constexpr int fewestDefaultRows = 3;
inline constexpr int mostDefaultRows = 10;
/// The height of such a body with @p rows rows.
int tableBodyHeightFor(int rows);

}  // namespace QB::DiagramLumo
