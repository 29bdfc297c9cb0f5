#include <algorithm>
#include <cstdlib>
#include <limits>
#include <utility>

#include "canvas/diagram/auto_layout.h"

namespace QB::DiagramLumo {
namespace {

/// Values strictly between the two do not go.
using Span = std::pair<int, int>;

/// The value nearest to @p wanted, not below @p least, in none of the spans. @p spans is sorted here.
int nearestOutside(std::vector<Span>& spans, int wanted, int least) {
    std::sort(spans.begin(), spans.end());
    int low = wanted;   // the end of what is taken around wanted
    int high = wanted;
    // Spans that hang together around the wanted value; sorted by their beginnings, those before it
    // may join only when a later one has grown the range, hence the second look.
    for (bool isGrown = true; isGrown;) {
        isGrown = false;
        for (const Span& span : spans) {
            if (span.first < high && high < span.second) {
                high = span.second;
                isGrown = true;
            }
            if (span.first < low && low < span.second) {
                low = span.first;
                isGrown = true;
            }
        }
    }
    return low >= least && wanted - low <= high - wanted ? low : high;
}

}  // namespace

}  // namespace QB::DiagramLumo
