#pragma once

#include <optional>
#include <utility>
#include <vector>

#include "platform/lumo/lumo_types.h"

namespace QB::DiagramLumo {

/// The numbers of links; pure, in one space for all of a call. A route runs from a stub of 8 pixels
/// at its start straight through the symbol in its middle to a stub at its end.
inline constexpr int stubLength = 8;
/// From the middle of a symbol to where the line begins.
inline constexpr double symbolReach = 21.0;

/// Degrees of the way from @p from to @p to; 90 or -90 for a vertical one.
double segmentAngle(LumoDoublePoint from, LumoDoublePoint to);
/// @p angle turned by half turns into (-90, 90], so that text stands upright.
double uprightAngle(double angle);
/// The middle of two points, in single precision, truncated.
LumoPoint routeMiddle(LumoPoint start, LumoPoint end);
/// The end of the stub at @p point, where a link docks. An end is "right" when it is the right one
/// of its link: it docks at its own left side, and the stub leaves to the left.
LumoPoint stubEnd(LumoPoint point, bool isRight);

struct Route {
    LumoPoint start;
    LumoPoint end;
    bool startIsRight = false;
    bool endIsRight = false;

    /// Both ends at one point: there is nothing to draw or to hit.
    bool isEmpty() const { return start == end; }
    LumoPoint startStub() const { return stubEnd(start, startIsRight); }
    LumoPoint endStub() const { return stubEnd(end, endIsRight); }
    /// Where the symbol stands: between the ends of the stubs. Where these point towards each other
    /// that is the middle of the route's ends.
    LumoPoint middle() const { return routeMiddle(startStub(), endStub()); }
    /// Of the line between the stubs.
    double angle() const;
    Route movedBy(LumoPoint delta) const;
    /// The ends and the stubs' ends, in the order of the line.
    std::vector<LumoPoint> corners() const { return {start, startStub(), endStub(), end}; }
};
bool operator==(const Route& a, const Route& b);

/// One end of a pair: an adaptor, seen from the parent of the link.
struct AdaptorEnd {
    LumoRect rect;
    LumoPoint left;  // where links dock
    LumoPoint right;
    /// In whole pixels, so that comparing it with a centre cut to whole pixels changes nothing.
    LumoDoublePoint centre() const;
};
/// The middle between the centres of a pair.
LumoDoublePoint linkCentre(const AdaptorEnd& a, const AdaptorEnd& b);
/// Each end docks at the side that faces @p centre; an end at the centre takes its right side.
Route routeBetween(const AdaptorEnd& a, const AdaptorEnd& b, LumoDoublePoint centre);

/// The part of the segment from @p from to @p to that lies in @p rect, in its direction; none if
/// that is a point at most.
std::optional<std::pair<LumoDoublePoint, LumoDoublePoint>> partInside(LumoPoint from, LumoPoint to,
                                                                      const LumoRect& rect);

/// The rectangle that a link takes for painting around @p adaptors: at least 800 x 800.
LumoRect linkRect(const LumoRect& adaptors);
/// The part of it that a route, its symbol and the halo of a selection really paint.
LumoRect routeBox(const Route& route);

/// Whether a point hits a link by its line, by its symbol, or both.
struct LinkHit {
    Route route;
    int joinType = 0;  // as SQLJoinType
    bool symbolShown = true;

    bool hits(LumoPoint point, bool line, bool symbol) const;
};
/// Whether @p point lies near the segment: about 6 pixels, measured along the axes from the middle
/// of the segment, so that (0, 0) must be that middle. The true distance of the band is 4 to 8.5.
bool nearSegment(LumoDoublePoint a, LumoDoublePoint b, LumoDoublePoint point);

/// One of the rings that run off a link which has just appeared.
struct PromptWave {
    double h = 0;  // half of what the pen is wider than 2
    double alpha = 0;
};
/// The waves at @p t, the part of the animation that has passed: none after about two thirds.
std::vector<PromptWave> promptWaves(double t);
/// How strongly the link itself still flashes at @p t; 0 for not at all.
double promptFlashAlpha(double t);

}  // namespace QB::DiagramLumo
