#pragma once

#include "platform/lumo/lumo_types.h"

namespace QB::DiagramLumo {

/// The numbers of links; pure. A route runs from a stub of 8 pixels at its start through the symbol
/// in its middle to a stub at its end.

/// Degrees of the way from @p from to @p to; 90 or -90 for a vertical one.
double segmentAngle(LumoDoublePoint from, LumoDoublePoint to);
/// @p angle turned by half turns into (-90, 90], so that text stands upright.
double uprightAngle(double angle);

struct Route {
    LumoPoint start;
    LumoPoint end;
    bool startIsRight = false;  // the stub at the start leaves to the left
    bool endIsRight = false;
};
struct AdaptorEnd {
    LumoRect rect;   // of the adaptor, in the link's parent
    LumoPoint left;  // its connection points, there too
    LumoPoint right;
    LumoDoublePoint centre() const;
};
/// The middle between the centres of a pair.
LumoDoublePoint linkCentre(const AdaptorEnd& a, const AdaptorEnd& b);
/// Each end connects at the side that faces @p centre.
Route routeBetween(const AdaptorEnd& a, const AdaptorEnd& b, LumoDoublePoint centre);
/// The middle of a route, in single precision, truncated.
LumoPoint routeMiddle(LumoPoint start, LumoPoint end);
/// The end of the stub at a point.
LumoPoint stubEnd(LumoPoint point, bool isRight);

/// The rectangle that a link takes for painting around @p adaptors: at least 800 x 800.
LumoRect linkRect(const LumoRect& adaptors);
/// The part of it that a route really paints, with the symbol, halos and waves: route box + 24.
LumoRect routeBox(const Route& route);

/// Whether a point hits a link whose route is given, by the line, by the symbol of a join type, or
/// both. All in one space.
struct LinkHit {
    Route route;
    int joinType = 0;
    bool symbolShown = true;

    bool hits(LumoPoint point, bool line, bool symbol) const;
};
/// Whether @p point lies within 6 of the segment, in the measure that links use.
bool nearSegment(LumoDoublePoint a, LumoDoublePoint b, LumoDoublePoint point);

}  // namespace QB::DiagramLumo
