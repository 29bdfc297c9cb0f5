#include <algorithm>
#include <cstdlib>
#include <limits>
#include <utility>

#include "canvas/diagram/auto_layout.h"

namespace QB::DiagramLumo {
namespace {

/// What lies strictly between the two is taken.
using Span = std::pair<int, int>;

bool isInside(const Span& span, int value) {
    return span.first < value && value < span.second;
}

/// Where the corner of a rectangle may not be because of one that stays.
struct TakenCorners {
    Span across;
    Span down;
};

std::vector<TakenCorners> takenCorners(LumoSize size, const std::vector<LumoRect>& taken,
                                       const LayoutSpacing& spacing) {
    std::vector<TakenCorners> corners;
    for (const LumoRect& rect : taken) {
        const LumoPoint end{rect.origin.x + rect.size.width, rect.origin.y + rect.size.height};
        corners.push_back({{rect.origin.x - size.width - spacing.between, end.x + spacing.between},
                           {rect.origin.y - size.height - spacing.below, end.y + spacing.below}});
    }
    return corners;
}

/// The value nearest to @p wanted, not below @p least, inside none of the spans.
int nearestOutside(std::vector<Span> spans, int wanted, int least) {
    std::sort(spans.begin(), spans.end());
    Span around{wanted, wanted};
    Span joined{0, 0};
    for (const Span& span : spans) {
        const bool doMeet = span.first < joined.second && joined.first < joined.second;
        joined = doMeet ? Span{joined.first, std::max(joined.second, span.second)} : span;
        if (isInside(joined, wanted)) around = joined;
    }
    const bool isLowNearer = wanted - around.first <= around.second - wanted;
    return isLowNearer && around.first >= least ? around.first : around.second;
}

/// The nearest corner has the wanted x, or touches a side of what is taken.
std::vector<int> placesAcross(const std::vector<TakenCorners>& corners, int wanted, int least) {
    std::vector<int> places{wanted};
    for (const TakenCorners& taken : corners) {
        places.push_back(taken.across.first);
        places.push_back(taken.across.second);
    }
    places.erase(
        std::remove_if(places.begin(), places.end(), [&](int place) { return place < least; }),
        places.end());
    std::sort(places.begin(), places.end(), [&](int a, int b) {
        return std::make_pair(std::abs(a - wanted), a) < std::make_pair(std::abs(b - wanted), b);
    });
    places.erase(std::unique(places.begin(), places.end()), places.end());
    return places;
}

}  // namespace

LumoPoint nearestFreePlace(LumoSize size, LumoPoint wanted, const std::vector<LumoRect>& taken,
                           const LayoutSpacing& spacing) {
    const LumoPoint goal{std::max(wanted.x, spacing.start.x), std::max(wanted.y, spacing.start.y)};
    const std::vector<TakenCorners> corners = takenCorners(size, taken, spacing);
    LumoPoint best;
    int64_t bestDistance = std::numeric_limits<int64_t>::max();
    for (int x : placesAcross(corners, goal.x, spacing.start.x)) {
        const int64_t across = int64_t{x} - goal.x;
        if (across * across >= bestDistance) break;
        std::vector<Span> spans;
        for (const TakenCorners& corner : corners)
            if (isInside(corner.across, x)) spans.push_back(corner.down);
        const int y = nearestOutside(std::move(spans), goal.y, spacing.start.y);
        const int64_t down = int64_t{y} - goal.y;
        if (across * across + down * down >= bestDistance) continue;
        bestDistance = across * across + down * down;
        best = {x, y};
    }
    return best;
}

}  // namespace QB::DiagramLumo
