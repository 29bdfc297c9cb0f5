#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

class LumoControl;

/// Values of the canvas: plain, copied freely, without identity. Lengths are logical pixels in the
/// space of whoever holds the value, unless the type says control (pixels of the widget, after
/// zoom and scroll).
struct LumoPoint {
    int32_t x = 0;
    int32_t y = 0;
};
inline LumoPoint operator+(LumoPoint a, LumoPoint b) {
    return {a.x + b.x, a.y + b.y};
}
inline LumoPoint operator-(LumoPoint a, LumoPoint b) {
    return {a.x - b.x, a.y - b.y};
}
inline LumoPoint& operator+=(LumoPoint& a, LumoPoint b) {
    return a = a + b;
}
inline LumoPoint& operator-=(LumoPoint& a, LumoPoint b) {
    return a = a - b;
}
inline bool operator==(LumoPoint a, LumoPoint b) {
    return a.x == b.x && a.y == b.y;
}
inline bool operator!=(LumoPoint a, LumoPoint b) {
    return !(a == b);
}

/// A point in the widget that shows a diagram.
struct LumoControlPoint {
    int32_t x = 0;
    int32_t y = 0;
};
inline bool operator==(LumoControlPoint a, LumoControlPoint b) {
    return a.x == b.x && a.y == b.y;
}
inline bool operator!=(LumoControlPoint a, LumoControlPoint b) {
    return !(a == b);
}

struct LumoSize {
    int32_t width = 0;
    int32_t height = 0;
};
inline bool operator==(LumoSize a, LumoSize b) {
    return a.width == b.width && a.height == b.height;
}
inline bool operator!=(LumoSize a, LumoSize b) {
    return !(a == b);
}

/// Covers the pixels [x, x + width) and [y, y + height).
struct LumoRect {
    LumoPoint origin;
    LumoSize size;

    LumoRect() = default;
    LumoRect(int32_t x, int32_t y, int32_t w, int32_t h) : origin{x, y}, size{w, h} {}
    LumoRect(LumoPoint at, LumoSize extent) : origin(at), size(extent) {}
};
inline bool operator==(const LumoRect& a, const LumoRect& b) {
    return a.origin == b.origin && a.size == b.size;
}
inline bool operator!=(const LumoRect& a, const LumoRect& b) {
    return !(a == b);
}

struct LumoDoublePoint {
    double x = 0;
    double y = 0;
};
struct LumoDoubleSize {
    double width = 0;
    double height = 0;

    LumoDoubleSize() = default;
    LumoDoubleSize(double w, double h) : width(w), height(h) {}
    explicit LumoDoubleSize(LumoSize size) : width(size.width), height(size.height) {}
};
struct LumoDoubleRect {
    LumoDoublePoint origin;
    LumoDoubleSize size;

    LumoDoubleRect() = default;
    LumoDoubleRect(double x, double y, double w, double h) : origin{x, y}, size{w, h} {}
    explicit LumoDoubleRect(const LumoRect& rect)
        : origin{double(rect.origin.x), double(rect.origin.y)}, size(rect.size) {}
};

/// Insets; of a margin constraint the distances that are kept.
struct LumoPadding {
    int32_t top = 0;
    int32_t bottom = 0;
    int32_t left = 0;
    int32_t right = 0;
};

/// Red, green, blue from 0 to 255, alpha from 0 (nothing is painted) to 1.
struct LumoColor {
    int red = 0;
    int green = 0;
    int blue = 0;
    double alpha = 0;
};
inline bool operator==(const LumoColor& a, const LumoColor& b) {
    return a.red == b.red && a.green == b.green && a.blue == b.blue && !(a.alpha < b.alpha) &&
           !(b.alpha < a.alpha);
}
inline bool operator!=(const LumoColor& a, const LumoColor& b) {
    return !(a == b);
}

/// Size in points at 96 dots an inch: 11 is 15 pixels high.
struct LumoFont {
    std::string family;
    int size = 0;
    bool bold = false;
    bool italic = false;

    LumoFont() = default;
    LumoFont(std::string name, int points) : family(std::move(name)), size(points) {}
};
bool operator==(const LumoFont& a, const LumoFont& b);
inline bool operator!=(const LumoFont& a, const LumoFont& b) {
    return !(a == b);
}

/// Held keys and buttons, as bits.
enum LumoEventKey : int32_t {
    LumoKeyShift = 2,
    LumoKeyControl = 4,
    LumoKeyAlt = 8,
    LumoButtonLeft = 16,
    LumoButtonRight = 32,
    LumoButtonMiddle = 64,
};

/// The codes of the keys that the canvas knows. Every other key is 0.
enum LumoKeyCode : int32_t {
    LumoKeyEscape = 3,
    LumoKeyTab = 4,
    LumoKeyBackTab = 5,
    LumoKeyReturn = 6,  // and Enter
    LumoKeySpace = 7,
    LumoKeyF2 = 8,
    LumoKeyMenu = 9,
    LumoKeyLeft = 10,
    LumoKeyRight = 11,
    LumoKeyUp = 12,
    LumoKeyDown = 13,
    LumoKeyDelete = 15,
    LumoKeyZero = 32,
    LumoKeyPlus = 43,
    LumoKeyMinus = 44,
    LumoKeyZeroPad = 74,
    LumoKeyEqual = 84,
    LumoKeyPlusPad = 85,
    LumoKeyMinusPad = 86,
    LumoKeyHome = 87,
    LumoKeyEnd = 88,
    LumoKeyPageUp = 89,
    LumoKeyPageDown = 90,
    LumoKeyA = 97,
    LumoKeyE = 101,
    LumoKeyF = 102,
    LumoKeyL = 108,
    LumoKeyR = 114,
};

/// Codes of mouse cursors, see LumoContext::notifyCursorChange.
enum LumoCursor : int32_t {
    LumoCursorDefault = 0,
    LumoCursorHand = 3,
    LumoCursorResizeHorizontal = 32,
    LumoCursorResizeVertical = 33,
    LumoCursorResizeFalling = 34,  // top left to bottom right
    LumoCursorResizeRising = 35,   // bottom left to top right
    LumoCursorOpenHand = 36,
    LumoCursorClosedHand = 37,
};

enum LumoEventResponderType : int32_t {
    LumoMouseDown = 1,
    LumoMouseMove = 2,
    LumoMouseUp = 3,
    LumoMouseEnter = 4,
    LumoMouseLeave = 5,
    LumoMouseWheel = 6,
    LumoMouseDoubleClick = 7,
    LumoMouseDragging = 8,
    LumoMouseDrop = 9,
    LumoDragEnter = 10,
    LumoDragOver = 11,
    LumoDragLeave = 12,
};

/// What one notch of a wheel is in LumoEvent::wheel.
inline constexpr int32_t lumoWheelNotch = 60;

/// An event as one object sees it: a value, passed by copy.
class LumoEvent {
public:
    LumoControl* control = nullptr;  // not owned: lives longer than the delivery
    LumoPoint point;                 // in the space of the object that receives it
    int32_t keys = 0;                // bits of LumoEventKey; of a release with the released button
    int32_t keyCode = 0;             // of key events, a LumoKeyCode
    LumoPoint wheel;                 // of wheel events: pixels to scroll, positive shows more below

    LumoPoint getMousePoint() const { return point; }
    /// The part of the diagram that the control shows, in the diagram's space.
    LumoRect getControlDisplayRect() const;
    bool containsEventKey(LumoEventKey key) const { return (keys & key) != 0; }
    /// True if exactly these are held, and nothing else.
    bool containsOnlyEventKeys(const std::vector<LumoEventKey>& expected) const;
};

/// True lets the event go on to what lies below, false consumes it.
using LumoEventResponder = std::function<bool(LumoEvent)>;

LumoRect lumoMakeRect(int32_t x, int32_t y, int32_t w, int32_t h);
LumoPoint lumoMakePoint(int32_t x, int32_t y);
LumoSize lumoMakeSize(int32_t w, int32_t h);
LumoDoubleRect lumoMakeDoubleRect(double x, double y, double w, double h);

/// The left and top edges belong to the rectangle, the right and bottom ones do not.
bool lumoPointInRect(LumoPoint point, const LumoRect& rect);
bool lumoContainsRect(const LumoRect& outer, const LumoRect& inner);
/// Rectangles that only touch do not intersect; neither do empty ones.
bool lumoIntersectsRect(const LumoRect& a, const LumoRect& b);
/// A default rectangle is the neutral element.
LumoRect lumoUnionRect(const LumoRect& a, const LumoRect& b);
/// Negative values shrink; a size that would turn negative is 0.
LumoRect lumoInflateRect(const LumoRect& rect, int32_t dx, int32_t dy);
/// What both cover; a default rectangle if they do not intersect.
LumoRect lumoIntersectedRect(const LumoRect& a, const LumoRect& b);
LumoRect lumoMovedRect(const LumoRect& rect, LumoPoint by);
int32_t lumoWidth(const LumoRect& rect);
int32_t lumoHeight(const LumoRect& rect);
int32_t lumoMinX(const LumoRect& rect);
int32_t lumoMaxX(const LumoRect& rect);
int32_t lumoMinY(const LumoRect& rect);
int32_t lumoMaxY(const LumoRect& rect);
