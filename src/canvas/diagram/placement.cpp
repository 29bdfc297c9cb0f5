#include "canvas/diagram/placement.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace QB::DiagramLumo {

namespace {

constexpr int64_t widening = 3000;
constexpr int64_t bottomMargin = 40;
constexpr int64_t topRowGap = 100;
constexpr int64_t otherGap = 80;

int64_t rightOf(const LumoRect& rect) {
    return int64_t(rect.origin.x) + rect.size.width;
}

int64_t bottomOf(const LumoRect& rect) {
    return int64_t(rect.origin.y) + rect.size.height;
}

int32_t clampedLength(int64_t length) {
    return int32_t(std::clamp<int64_t>(length, 0, largestCanvas));
}

/// As far to the right as @p x, but not out of the largest canvas.
int32_t clampedX(int64_t x, int32_t width) {
    return int32_t(std::min<int64_t>(x, largestCanvas - width));
}

/// The part of @p rect from left to right that a canvas can have, so that sums cannot overflow.
LumoRect insideLargestCanvas(const LumoRect& rect) {
    const auto inside = [](int64_t x) {
        return std::clamp<int64_t>(x, -largestCanvas, largestCanvas);
    };
    const int64_t left = inside(rect.origin.x);
    const int64_t top = inside(rect.origin.y);
    return {int32_t(left), int32_t(top), int32_t(inside(rightOf(rect)) - left),
            int32_t(inside(bottomOf(rect)) - top)};
}

/// Rectangles are met once each, left to right, while the search moves to the right over them.
class Sweep {
public:
    Sweep(const std::vector<LumoRect>& items, const LumoRect& band) {
        for (const LumoRect& item : items)
            if (item.origin.y < bottomOf(band) && bottomOf(item) > band.origin.y)
                m_waiting.push_back(insideLargestCanvas(item));
        std::sort(m_waiting.begin(), m_waiting.end(), [](const LumoRect& a, const LumoRect& b) {
            return a.origin.x > b.origin.x;  // the leftmost is taken from the end
        });
    }

    const std::vector<LumoRect>& near(const LumoRect& proposed) {
        const auto passed = [&](const LumoRect& rect) {
            return rightOf(rect) <= proposed.origin.x;
        };
        m_near.erase(std::remove_if(m_near.begin(), m_near.end(), passed), m_near.end());
        for (; !m_waiting.empty() && m_waiting.back().origin.x < rightOf(proposed);
             m_waiting.pop_back())
            if (!passed(m_waiting.back())) m_near.push_back(m_waiting.back());
        return m_near;
    }

private:
    std::vector<LumoRect> m_waiting;
    std::vector<LumoRect> m_near;
};

/// @p proposed moved behind what it hit.
LumoRect steppedOver(LumoRect proposed, const ProposedRectCheckingResult& hit) {
    const int32_t width = proposed.size.width;
    if (hit.collidesTopRow)
        proposed.origin.x = clampedX(rightOf(hit.topRowBounds) + topRowGap, width);
    if (lumoIntersectsRect(proposed, hit.collidedUnion))
        proposed.origin.x = clampedX(rightOf(hit.collidedUnion) + otherGap, width);
    return proposed;
}

/// One axis of a group's move.
int32_t clampedAxis(int32_t group, int32_t length, int32_t delta, int32_t low, int32_t high,
                    int32_t lowValue) {
    if (group + delta < low) return lowValue - group;
    if (group + delta + length > high) return std::max(high - length, low) - group;
    return delta;
}

}  // namespace

bool checkProposedRect(const LumoRect& proposed, const LumoRect& diagram,
                       const std::vector<LumoRect>& items, ProposedRectCheckingResult* result) {
    *result = {};
    if (!lumoContainsRect(diagram, proposed)) {
        result->exceedsDiagram = true;
        return false;
    }
    for (const LumoRect& item : items) {
        if (!lumoIntersectsRect(item, proposed)) continue;
        if (item.origin.y == placementStart) {
            result->collidesTopRow = true;
            result->topRowBounds = lumoUnionRect(result->topRowBounds, item);
        }
        result->collidedUnion = lumoUnionRect(result->collidedUnion, item);
    }
    return result->collidedUnion.size.width == 0 || result->collidedUnion.size.height == 0;
}

LumoSize grownToHold(LumoSize diagram, const LumoRect& content) {
    const int64_t missing = rightOf(content) - diagram.width;
    const int64_t steps = missing > 0 ? (missing + widening - 1) / widening : 0;
    diagram.width = clampedLength(diagram.width + steps * widening);
    if (bottomOf(content) > diagram.height)
        diagram.height = clampedLength(bottomOf(content) + bottomMargin);
    return diagram;
}

Placement findPlace(LumoSize size, LumoSize diagram, const std::vector<LumoRect>& items) {
    // What is as large as the largest canvas still begins at the start.
    const auto fitting = [](int32_t length) {
        return std::min(clampedLength(length), largestCanvas - placementStart);
    };
    Placement place{{placementStart, placementStart, fitting(size.width), fitting(size.height)},
                    {clampedLength(diagram.width), clampedLength(diagram.height)}};
    Sweep sweep(items, place.rect);
    for (;;) {
        place.diagram = grownToHold(place.diagram, place.rect);
        ProposedRectCheckingResult hit;
        if (checkProposedRect(place.rect, {{0, 0}, place.diagram}, sweep.near(place.rect), &hit))
            return place;
        const LumoRect next = steppedOver(place.rect, hit);
        if (next.origin.x <= place.rect.origin.x) return place;  // the largest canvas is full
        place.rect = next;
    }
}

LumoPoint clampedGroupDelta(const LumoRect& group, LumoPoint delta, const LumoRect& bounds) {
    const int32_t left = lumoMinX(bounds);
    return {clampedAxis(group.origin.x, group.size.width, delta.x, left, lumoMaxX(bounds), left),
            clampedAxis(group.origin.y, group.size.height, delta.y, lumoMinY(bounds),
                        lumoMaxY(bounds), left)};
}

int autoScrollStep(int distance) {
    const int magnitude = std::abs(distance);
    const int sign = distance < 0 ? -1 : 1;
    if (magnitude == 0) return 0;
    if (magnitude <= 2) return sign;
    if (magnitude <= 100) return sign * (magnitude / 3);
    return sign * 33;
}

LumoPoint autoScrollStep(LumoPoint point, const LumoRect& inner) {
    const auto beyond = [](int32_t at, int32_t first, int32_t end) {
        if (at < first) return at - first;
        return at >= end ? at - end + 1 : 0;
    };
    return {autoScrollStep(beyond(point.x, lumoMinX(inner), lumoMaxX(inner))),
            autoScrollStep(beyond(point.y, lumoMinY(inner), lumoMaxY(inner)))};
}

LumoRect rubberBandRect(LumoPoint start, LumoPoint end) {
    return {int32_t(std::trunc(std::min(start.x, end.x) - 0.5)),
            int32_t(std::trunc(std::min(start.y, end.y) - 0.5)), std::abs(end.x - start.x),
            std::abs(end.y - start.y)};
}

std::vector<size_t> readingOrder(const std::vector<LumoRect>& rects) {
    std::vector<size_t> order(rects.size());
    std::iota(order.begin(), order.end(), size_t(0));
    const auto byTop = [&](size_t a, size_t b) {
        return rects[a].origin.y < rects[b].origin.y;
    };
    const auto byLeft = [&](size_t a, size_t b) {
        return rects[a].origin.x < rects[b].origin.x;
    };
    std::stable_sort(order.begin(), order.end(), byTop);
    for (auto row = order.begin(); row != order.end();) {
        const LumoRect& first = rects[*row];
        const int32_t middle = first.origin.y + std::max(first.size.height / 2, 1);
        const auto end = std::find_if(
            row, order.end(), [&](size_t index) { return rects[index].origin.y >= middle; });
        std::stable_sort(row, end, byLeft);
        row = end;
    }
    return order;
}

}  // namespace QB::DiagramLumo
