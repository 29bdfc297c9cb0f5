#include "canvas/items/item_geometry.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace QB::DiagramLumo {

namespace {

constexpr int hoverReach = 5;   // to both sides of an edge, across it
constexpr int hoverBeyond = 4;  // past its ends, along it

bool within(int value, int low, int high) {
    return value >= low && value <= high;
}

/// @p low for a pointer at the first of two parallel edges, @p high at the second, else 0.
int32_t nearerEdge(int value, int first, int second, int32_t low, int32_t high) {
    if (within(value, first - hoverReach, first + hoverReach)) return low;
    if (within(value, second - hoverReach, second + hoverReach)) return high;
    return 0;
}

LumoPoint clampedInto(const LumoRect& bounds, LumoPoint point) {
    return {std::clamp(point.x, lumoMinX(bounds), lumoMaxX(bounds)),
            std::clamp(point.y, lumoMinY(bounds), lumoMaxY(bounds))};
}

/// Where a length that starts at @p origin goes so that it lies in [low, high), from @p low on if
/// it is too long for that.
int32_t insideOf(int32_t origin, int32_t length, int32_t low, int32_t high) {
    return std::max(low, std::min(origin, high - length));
}

LumoRect movedRect(const ItemDrag& drag, LumoPoint delta) {
    if (drag.keepShape && std::abs(delta.x) < std::abs(delta.y)) delta.x = 0;
    if (drag.keepShape && std::abs(delta.y) < std::abs(delta.x)) delta.y = 0;
    const LumoPoint origin = drag.start.origin + delta;
    const LumoSize size = drag.start.size;
    return {{insideOf(origin.x, size.width, lumoMinX(drag.bounds), lumoMaxX(drag.bounds)),
             insideOf(origin.y, size.height, lumoMinY(drag.bounds), lumoMaxY(drag.bounds))},
            size};
}

/// One axis of a resize.
struct Axis {
    int32_t start;    // length at the press
    int32_t wanted;   // by the pointer
    int32_t minimum;  // at least 1, for ratios
    int32_t maximum;  // until the moving edge meets the bounds

    int32_t clamped(int32_t length) const { return std::max(minimum, std::min(length, maximum)); }
    double relative() const { return double(wanted) / start; }
};

Axis horizontalAxis(const ItemDrag& drag, int32_t delta) {
    const bool left = drag.edges & EdgeLeft;
    const int32_t change = left ? -delta : (drag.edges & EdgeRight) ? delta : 0;
    return {lumoWidth(drag.start), lumoWidth(drag.start) + change, std::max(drag.minimum.width, 1),
            left ? lumoMaxX(drag.start) - lumoMinX(drag.bounds)
                 : lumoMaxX(drag.bounds) - lumoMinX(drag.start)};
}

Axis verticalAxis(const ItemDrag& drag, int32_t delta) {
    const bool top = drag.edges & EdgeTop;
    const int32_t change = top ? -delta : (drag.edges & EdgeBottom) ? delta : 0;
    return {lumoHeight(drag.start), lumoHeight(drag.start) + change,
            std::max(drag.minimum.height, 1),
            top ? lumoMaxY(drag.start) - lumoMinY(drag.bounds)
                : lumoMaxY(drag.bounds) - lumoMinY(drag.start)};
}

/// The size with the ratio of the start; the axis that was dragged further decides.
LumoSize proportionalSize(const Axis& x, const Axis& y) {
    const double wanted =
        std::abs(x.relative() - 1) >= std::abs(y.relative() - 1) ? x.relative() : y.relative();
    const double largest = std::min(double(x.maximum) / x.start, double(y.maximum) / y.start);
    const double least = std::max(double(x.minimum) / x.start, double(y.minimum) / y.start);
    const double factor = std::max(least, std::min(wanted, largest));
    return {x.clamped(int32_t(std::lround(x.start * factor))),
            y.clamped(int32_t(std::lround(y.start * factor)))};
}

LumoSize resizedSize(const ItemDrag& drag, LumoPoint delta) {
    const Axis x = horizontalAxis(drag, delta.x);
    const Axis y = verticalAxis(drag, delta.y);
    if (drag.keepShape && x.start > 0 && y.start > 0) return proportionalSize(x, y);
    const bool follows = drag.edges & (EdgeLeft | EdgeRight);
    const bool followsY = drag.edges & (EdgeTop | EdgeBottom);
    return {follows ? x.clamped(x.wanted) : x.start, followsY ? y.clamped(y.wanted) : y.start};
}

LumoRect resizedRect(const ItemDrag& drag, LumoPoint delta) {
    const LumoSize size = resizedSize(drag, delta);
    LumoPoint origin = drag.start.origin;
    if (drag.edges & EdgeLeft) origin.x = lumoMaxX(drag.start) - size.width;
    if (drag.edges & EdgeTop) origin.y = lumoMaxY(drag.start) - size.height;
    return {origin, size};
}

}  // namespace

LumoRect bodyRectOf(LumoSize item) {
    const LumoRect rect(itemInsetX, itemInsetY, item.width - 2 * itemInsetX,
                        item.height - 2 * itemInsetY);
    return rect.size.width < 0 || rect.size.height < 0 ? LumoRect() : rect;
}

LumoSize itemSizeFor(LumoSize body) {
    return {body.width + 2 * itemInsetX, body.height + 2 * itemInsetY};
}

int32_t hoverEdgesAt(const LumoRect& body, LumoPoint point) {
    int32_t edges = 0;
    if (within(point.y, lumoMinY(body) - hoverBeyond, lumoMaxY(body) + hoverBeyond))
        edges |= nearerEdge(point.x, lumoMinX(body), lumoMaxX(body), EdgeLeft, EdgeRight);
    if (within(point.x, lumoMinX(body) - hoverBeyond, lumoMaxX(body) + hoverBeyond))
        edges |= nearerEdge(point.y, lumoMinY(body), lumoMaxY(body), EdgeTop, EdgeBottom);
    return edges;
}

int cursorForEdges(int32_t edges) {
    switch (edges) {
        case EdgeTop:
        case EdgeBottom:
            return LumoCursorResizeVertical;
        case EdgeLeft:
        case EdgeRight:
            return LumoCursorResizeHorizontal;
        case EdgeTop | EdgeLeft:
        case EdgeBottom | EdgeRight:
            return LumoCursorResizeFalling;
        case EdgeTop | EdgeRight:
        case EdgeBottom | EdgeLeft:
            return LumoCursorResizeRising;
        default:
            return LumoCursorDefault;
    }
}

LumoRect draggedRect(const ItemDrag& drag, LumoPoint point) {
    const LumoPoint delta = clampedInto(drag.bounds, point) - drag.startPoint;
    return drag.edges == 0 ? movedRect(drag, delta) : resizedRect(drag, delta);
}

LumoSize defaultTableBodySize() {
    return {200, tableBodyHeightFor(mostDefaultRows)};
}

LumoSize defaultTextBodySize() {
    return {240, 120};
}

int tableBodyHeightFor(int rows) {
    const int shown = std::clamp(rows, fewestDefaultRows, mostDefaultRows);
    return fieldListInsets.top + shown * fieldRowHeight + fieldListInsets.bottom;
}

}  // namespace QB::DiagramLumo
