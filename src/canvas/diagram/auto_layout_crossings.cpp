#include <algorithm>
#include <utility>

#include "canvas/diagram/auto_layout.h"
#include "canvas/diagram/auto_layout_parts.h"

namespace QB::DiagramLumo {
namespace {

using AutoLayout::Index;

struct Line {
    Index from;
    Index to;
    LumoPoint begin;
    LumoPoint end;
};

/// Above 0 if @p c lies to the left of the way from @p a to @p b, below 0 to the right.
int sideOf(LumoPoint a, LumoPoint b, LumoPoint c) {
    const int64_t area =
        int64_t{b.x - a.x} * int64_t{c.y - a.y} - int64_t{b.y - a.y} * int64_t{c.x - a.x};
    return area > 0 ? 1 : area < 0 ? -1 : 0;
}

bool isWithin(LumoPoint a, LumoPoint b, LumoPoint c) {
    return std::min(a.x, b.x) <= c.x && c.x <= std::max(a.x, b.x) && std::min(a.y, b.y) <= c.y &&
           c.y <= std::max(a.y, b.y);
}

bool isOn(const Line& line, LumoPoint point) {
    return sideOf(line.begin, line.end, point) == 0 && isWithin(line.begin, line.end, point);
}

bool doMeet(const Line& a, const Line& b) {
    if (isOn(a, b.begin) || isOn(a, b.end) || isOn(b, a.begin) || isOn(b, a.end)) return true;
    return sideOf(a.begin, a.end, b.begin) * sideOf(a.begin, a.end, b.end) < 0 &&
           sideOf(b.begin, b.end, a.begin) * sideOf(b.begin, b.end, a.end) < 0;
}

/// The lines share a box: whether one hides a part of the other.
bool doCover(const Line& a, const Line& b) {
    const auto hides = [](const Line& line, LumoPoint point) {
        return point != line.begin && point != line.end && isOn(line, point);
    };
    return hides(a, b.begin) || hides(a, b.end) || hides(b, a.begin) || hides(b, a.end);
}

bool doCross(const Line& a, const Line& b) {
    const bool shareBox = a.from == b.from || a.from == b.to || a.to == b.from || a.to == b.to;
    return shareBox ? doCover(a, b) : doMeet(a, b);
}

LumoPoint endAt(LumoPoint origin, LumoSize size, bool isOnLeft) {
    return {isOnLeft ? origin.x - linkEndBeside : origin.x + size.width + linkEndBeside,
            origin.y + linkEndBelow};
}

Line lineOf(const std::pair<Index, Index>& link, const std::vector<LumoSize>& boxes,
            const std::vector<LumoPoint>& origins) {
    const auto [from, to] = link;
    const int fromMiddle = origins[from].x + boxes[from].width / 2;
    const int toMiddle = origins[to].x + boxes[to].width / 2;
    return {from, to, endAt(origins[from], boxes[from], fromMiddle > toMiddle),
            endAt(origins[to], boxes[to], toMiddle > fromMiddle)};
}

}  // namespace

int countCrossings(const LayoutGraph& graph, const std::vector<LumoPoint>& origins) {
    std::vector<Line> lines;
    for (const auto& link : AutoLayout::distinctLinks(graph))
        lines.push_back(lineOf(link, graph.boxes, origins));
    int crossings = 0;
    for (Index i = 0; i < lines.size(); ++i)
        for (Index j = 0; j < i; ++j)
            crossings += doCross(lines[i], lines[j]) ? 1 : 0;
    return crossings;
}

}  // namespace QB::DiagramLumo
