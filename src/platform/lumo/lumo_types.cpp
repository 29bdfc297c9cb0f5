#include "platform/lumo/lumo_types.h"

#include <algorithm>
#include <limits>

#include "platform/lumo/lumo_control.h"

namespace {

int32_t saturated(int64_t value) {
    return int32_t(std::clamp<int64_t>(value, std::numeric_limits<int32_t>::min(),
                                       std::numeric_limits<int32_t>::max()));
}

bool isEmpty(const LumoRect& rect) {
    return rect.size.width <= 0 || rect.size.height <= 0;
}

LumoRect fromEdges(int64_t left, int64_t top, int64_t right, int64_t bottom) {
    return {saturated(left), saturated(top), saturated(right - left), saturated(bottom - top)};
}

}  // namespace

bool operator==(const LumoFont& a, const LumoFont& b) {
    return a.size == b.size && a.bold == b.bold && a.italic == b.italic && a.family == b.family;
}

LumoRect LumoEvent::getControlDisplayRect() const {
    return control ? control->getDisplayRect() : LumoRect();
}

bool LumoEvent::containsOnlyEventKeys(const std::vector<LumoEventKey>& expected) const {
    int32_t bits = 0;
    for (const LumoEventKey key : expected)
        bits |= key;
    return keys == bits;
}

LumoRect lumoMakeRect(int32_t x, int32_t y, int32_t w, int32_t h) {
    return {x, y, w, h};
}

LumoPoint lumoMakePoint(int32_t x, int32_t y) {
    return {x, y};
}

LumoSize lumoMakeSize(int32_t w, int32_t h) {
    return {w, h};
}

LumoDoubleRect lumoMakeDoubleRect(double x, double y, double w, double h) {
    return {x, y, w, h};
}

bool lumoPointInRect(LumoPoint point, const LumoRect& rect) {
    return point.x >= lumoMinX(rect) && point.x < lumoMaxX(rect) && point.y >= lumoMinY(rect) &&
           point.y < lumoMaxY(rect);
}

bool lumoContainsRect(const LumoRect& outer, const LumoRect& inner) {
    return lumoMinX(inner) >= lumoMinX(outer) && lumoMaxX(inner) <= lumoMaxX(outer) &&
           lumoMinY(inner) >= lumoMinY(outer) && lumoMaxY(inner) <= lumoMaxY(outer);
}

bool lumoIntersectsRect(const LumoRect& a, const LumoRect& b) {
    return !isEmpty(a) && !isEmpty(b) && lumoMinX(a) < lumoMaxX(b) && lumoMinX(b) < lumoMaxX(a) &&
           lumoMinY(a) < lumoMaxY(b) && lumoMinY(b) < lumoMaxY(a);
}

LumoRect lumoIntersectedRect(const LumoRect& a, const LumoRect& b) {
    if (!lumoIntersectsRect(a, b)) return {};
    return fromEdges(std::max(lumoMinX(a), lumoMinX(b)), std::max(lumoMinY(a), lumoMinY(b)),
                     std::min(lumoMaxX(a), lumoMaxX(b)), std::min(lumoMaxY(a), lumoMaxY(b)));
}

LumoRect lumoUnionRect(const LumoRect& a, const LumoRect& b) {
    if (a == LumoRect()) return b;
    if (b == LumoRect()) return a;
    return fromEdges(std::min(lumoMinX(a), lumoMinX(b)), std::min(lumoMinY(a), lumoMinY(b)),
                     std::max(lumoMaxX(a), lumoMaxX(b)), std::max(lumoMaxY(a), lumoMaxY(b)));
}

LumoRect lumoInflateRect(const LumoRect& rect, int32_t dx, int32_t dy) {
    const int64_t width = std::max<int64_t>(0, int64_t(rect.size.width) + 2 * int64_t(dx));
    const int64_t height = std::max<int64_t>(0, int64_t(rect.size.height) + 2 * int64_t(dy));
    return {saturated(int64_t(rect.origin.x) - dx), saturated(int64_t(rect.origin.y) - dy),
            saturated(width), saturated(height)};
}

LumoRect lumoMovedRect(const LumoRect& rect, LumoPoint by) {
    return {{saturated(int64_t(rect.origin.x) + by.x), saturated(int64_t(rect.origin.y) + by.y)},
            rect.size};
}

int32_t lumoWidth(const LumoRect& rect) {
    return rect.size.width;
}

int32_t lumoHeight(const LumoRect& rect) {
    return rect.size.height;
}

int32_t lumoMinX(const LumoRect& rect) {
    return rect.origin.x;
}

int32_t lumoMaxX(const LumoRect& rect) {
    return saturated(int64_t(rect.origin.x) + rect.size.width);
}

int32_t lumoMinY(const LumoRect& rect) {
    return rect.origin.y;
}

int32_t lumoMaxY(const LumoRect& rect) {
    return saturated(int64_t(rect.origin.y) + rect.size.height);
}
