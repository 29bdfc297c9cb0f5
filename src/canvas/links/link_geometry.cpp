#include "canvas/links/link_geometry.h"

#include <algorithm>
#include <cmath>

namespace QB::DiagramLumo {
namespace {

constexpr double pi = 3.1415926;  // as the angles of saved pictures were made
constexpr double hitWidth = 6.0;
constexpr int routeMargin = 24;  // the symbol's reach and half the pen of its halo

double radians(double degrees) {
    return degrees * pi / 180.0;
}

LumoDoublePoint toDouble(LumoPoint point) {
    return {double(point.x), double(point.y)};
}

int32_t middleOf(int32_t a, int32_t b) {
    return int32_t(float(int64_t(a) + b) * 0.5F);
}

/// At least @p least long, growing to both sides. A position and a length.
void growTo(int32_t least, int32_t& position, int32_t& length) {
    if (length >= least) return;
    position = int32_t(position + length / 2.0 - least / 2.0);
    length = least;
}

bool nearZero(double value) {
    return std::fabs(value) < hitWidth;
}

bool between(double value, double one, double other) {
    return value >= std::min(one, other) - hitWidth && value <= std::max(one, other) + hitWidth;
}

double squared(double dx, double dy) {
    return dx * dx + dy * dy;
}

/// The two circles of a symbol turned by @p angle; @p point from its middle.
bool hitsSymbol(LumoDoublePoint point, double angle, int joinType) {
    const double cosine = std::cos(radians(angle));
    const double sine = std::sin(radians(angle));
    const int width = int(std::fabs(42 * cosine) + std::fabs(25 * sine));
    const int height = int(std::fabs(42 * sine) + std::fabs(25 * cosine));
    if (std::fabs(point.x) * 2 > width || std::fabs(point.y) * 2 > height) return false;
    const bool isCross = joinType == 5;
    const double radius = isCross ? 10.0 : 12.5;
    const double away = isCross ? 11.0 : 8.5;
    const double x = away * cosine;
    const double y = away * sine;
    return squared(point.x - x, point.y - y) < radius * radius ||
           squared(point.x + x, point.y + y) < radius * radius;
}

}  // namespace

double segmentAngle(LumoDoublePoint from, LumoDoublePoint to) {
    const double dx = to.x - from.x;
    const double dy = to.y - from.y;
    if (!(dx < 0) && !(dx > 0)) return dy > 0 ? 90 : -90;
    const double angle = std::atan(dy / dx) * 180 / pi;
    if (dx > 0) return angle;
    return dy > 0 ? angle + 180 : angle - 180;
}

double uprightAngle(double angle) {
    while (angle > 90)
        angle -= 180;
    while (angle <= -90)
        angle += 180;
    return angle;
}

LumoPoint routeMiddle(LumoPoint start, LumoPoint end) {
    return {middleOf(start.x, end.x), middleOf(start.y, end.y)};
}

LumoPoint stubEnd(LumoPoint point, bool isRight) {
    return {point.x + (isRight ? -stubLength : stubLength), point.y};
}

double Route::angle() const {
    return segmentAngle(toDouble(startStub()), toDouble(endStub()));
}

Route Route::movedBy(LumoPoint delta) const {
    return {start + delta, end + delta, startIsRight, endIsRight};
}

bool operator==(const Route& a, const Route& b) {
    return a.start == b.start && a.end == b.end && a.startIsRight == b.startIsRight &&
           a.endIsRight == b.endIsRight;
}

std::optional<std::pair<LumoDoublePoint, LumoDoublePoint>> partInside(LumoPoint from, LumoPoint to,
                                                                      const LumoRect& rect) {
    const LumoPoint way = to - from;
    double first = 0;  // as parts of the way
    double last = 1;
    const auto narrow = [&](int32_t start, int32_t length, int32_t low, int32_t high) {
        if (length == 0) {
            if (start < low || start > high) last = -1;
            return;
        }
        const auto [enters, leaves] =
            std::minmax({double(low - start) / length, double(high - start) / length});
        first = std::max(first, enters);
        last = std::min(last, leaves);
    };
    narrow(from.x, way.x, lumoMinX(rect), lumoMaxX(rect));
    narrow(from.y, way.y, lumoMinY(rect), lumoMaxY(rect));
    if (!(first < last)) return std::nullopt;
    const auto at = [&](double part) {
        return LumoDoublePoint{from.x + way.x * part, from.y + way.y * part};
    };
    return std::make_pair(at(first), at(last));
}

LumoDoublePoint AdaptorEnd::centre() const {
    return {double(rect.origin.x + rect.size.width / 2),
            double(rect.origin.y + rect.size.height / 2)};
}

LumoDoublePoint linkCentre(const AdaptorEnd& a, const AdaptorEnd& b) {
    const LumoDoublePoint one = a.centre();
    const LumoDoublePoint other = b.centre();
    return {(one.x + other.x) / 2, (one.y + other.y) / 2};
}

Route routeBetween(const AdaptorEnd& a, const AdaptorEnd& b, LumoDoublePoint centre) {
    Route route;
    route.startIsRight = a.centre().x > centre.x;
    route.endIsRight = b.centre().x > centre.x;
    route.start = route.startIsRight ? a.left : a.right;
    route.end = route.endIsRight ? b.left : b.right;
    return route;
}

LumoRect linkRect(const LumoRect& adaptors) {
    LumoRect rect = adaptors;
    growTo(800, rect.origin.x, rect.size.width);
    growTo(800, rect.origin.y, rect.size.height);
    return rect;
}

LumoRect routeBox(const Route& route) {
    const LumoPoint corners[] = {route.start, route.startStub(), route.end, route.endStub()};
    LumoPoint low = route.start;
    LumoPoint high = route.start;
    for (const LumoPoint& corner : corners) {
        low = {std::min(low.x, corner.x), std::min(low.y, corner.y)};
        high = {std::max(high.x, corner.x), std::max(high.y, corner.y)};
    }
    const LumoRect box(low, {high.x - low.x, high.y - low.y});
    return lumoInflateRect(box, routeMargin, routeMargin);
}

bool nearSegment(LumoDoublePoint a, LumoDoublePoint b, LumoDoublePoint point) {
    if (!between(point.x, a.x, b.x) || !between(point.y, a.y, b.y)) return false;
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    if (!(dx < 0) && !(dx > 0)) return nearZero(point.x - a.x);
    if (!(dy < 0) && !(dy > 0)) return nearZero(point.y - a.y);
    const double slope = dy / dx;
    return nearZero((a.y + b.y) * 0.5 + slope * point.x - point.y) ||
           nearZero((a.x + b.x) * 0.5 + point.y / slope - point.x);
}

bool LinkHit::hits(LumoPoint point, bool line, bool symbol) const {
    if (route.isEmpty()) return false;
    const LumoPoint middle = route.middle();
    const LumoDoublePoint probe = toDouble(point - middle);
    const LumoDoublePoint a = toDouble(route.startStub() - middle);
    const LumoDoublePoint b = toDouble(route.endStub() - middle);
    if (line && nearSegment(a, b, probe)) return true;
    return symbol && symbolShown && hitsSymbol(probe, segmentAngle(a, b), joinType);
}

std::vector<PromptWave> promptWaves(double t) {
    std::vector<PromptWave> waves;
    if (t < 0 || t > 1) return waves;
    for (const double delay : {0.0, 0.2, 0.6}) {
        const double p = t / 0.4 - delay;
        if (p < 0 || p > 1) continue;
        const double base = p < 0.6 ? 0.3 : (1.0 - (p - 0.6) / 0.4) * 0.3;
        waves.push_back({p * 10.0, ((1.0 - t) * 0.7 + 0.3) * base});
    }
    return waves;
}

double promptFlashAlpha(double t) {
    if (t < 0 || t > 0.6) return 0;
    return (std::cos(t / 0.6 * pi) * 0.5 + 0.5) * 0.8;
}

}  // namespace QB::DiagramLumo
