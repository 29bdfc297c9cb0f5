#include "platform/lumo/lumo_scroll_bar.h"

#include <algorithm>
#include <cmath>

#include "platform/lumo/lumo_paint.h"

namespace {

constexpr double shortestThumb = 20;
/// Greys that show on light and on dark alike.
constexpr LumoColor grooveColor{128, 128, 128, 0.15};
constexpr LumoColor thumbColor{128, 128, 128, 0.55};
constexpr LumoColor litThumbColor{128, 128, 128, 0.75};
constexpr LumoColor heldThumbColor{128, 128, 128, 0.95};

bool isLeft(const LumoEvent& event) {
    return event.containsEventKey(LumoButtonLeft);
}

}  // namespace

long LumoScrollRange::clamped(long wanted) const {
    return std::clamp(wanted, 0L, maximum());
}

LumoScrollThumb lumoScrollThumb(const LumoScrollRange& range, int32_t groove) {
    const double whole = groove;
    if (range.maximum() == 0) return {0, whole};
    const double share = whole * double(range.page) / double(range.content);
    const double length = std::min(std::max(share, shortestThumb), whole);
    return {(whole - length) * double(range.offset) / double(range.maximum()), length};
}

long lumoScrollOffsetAt(const LumoScrollRange& range, int32_t groove, double start) {
    const double way = groove - lumoScrollThumb(range, groove).length;
    if (way <= 0) return range.offset;
    return range.clamped(std::lround(start * double(range.maximum()) / way));
}

LumoScrollBar::LumoScrollBar(bool vertical, std::function<void(long)> scrollTo)
    : m_vertical(vertical), m_scrollTo(std::move(scrollTo)) {
    setHighlightable(true);
    const auto pressed = [this](const LumoEvent& event) {
        return press(event);
    };
    const auto released = [this](const LumoEvent& event) {
        return release(event);
    };
    registerEventResponder(LumoMouseDown, pressed);
    registerEventResponder(LumoMouseDoubleClick, pressed);
    registerEventResponder(LumoMouseDragging,
                           [this](const LumoEvent& event) { return drag(event); });
    registerEventResponder(LumoMouseUp, released);
    registerEventResponder(LumoMouseDrop, released);
    // What lies below has no say in the cursor here.
    registerEventResponder(LumoMouseMove, [](const LumoEvent&) { return false; });
}

void LumoScrollBar::setRange(const LumoScrollRange& range) {
    if (m_range == range) return;
    m_range = range;
    invalidate();
}

int32_t LumoScrollBar::groove() const {
    return m_vertical ? getRect().size.height : getRect().size.width;
}

LumoDoubleRect LumoScrollBar::thumbRect() const {
    const LumoScrollThumb thumb = lumoScrollThumb(m_range, groove());
    const double across = m_vertical ? getRect().size.width : getRect().size.height;
    return m_vertical ? LumoDoubleRect(0, thumb.start, across, thumb.length)
                      : LumoDoubleRect(thumb.start, 0, thumb.length, across);
}

bool LumoScrollBar::press(const LumoEvent& event) {
    if (!isLeft(event)) return true;
    const LumoScrollThumb thumb = lumoScrollThumb(m_range, groove());
    const double at = along(event.point) - thumb.start;
    if (at >= 0 && at < thumb.length) {
        setGrip(at);
        return false;
    }
    // A tenth of what showed stays in sight.
    const long page = m_range.page - m_range.page / 10;
    m_scrollTo(m_range.clamped(m_range.offset + (at < 0 ? -page : page)));
    return false;
}

bool LumoScrollBar::drag(const LumoEvent& event) {
    if (!isLeft(event)) return true;
    if (m_grip) m_scrollTo(lumoScrollOffsetAt(m_range, groove(), along(event.point) - *m_grip));
    return false;
}

bool LumoScrollBar::release(const LumoEvent& event) {
    setGrip(std::nullopt);
    return !isLeft(event);
}

void LumoScrollBar::setGrip(std::optional<double> grip) {
    m_grip = grip;
    invalidate();
}

bool LumoScrollBar::shouldForwardEventToNeighbors(LumoEvent event) {
    return !ptInRect(event.point);
}

void LumoScrollBar::paint(LumoPaintConfig* config, LumoRect rect) {
    LumoPainter painter(config, this);
    const bool lit = m_grip || getHighlighted();
    if (lit) {
        painter.setColor(grooveColor);
        painter.addRect(LumoDoubleRect(getBoundingRect()));
        painter.fill();
    }
    const double inset = lit ? 1 : 2;
    LumoDoubleRect thumb = thumbRect();
    thumb.origin = {thumb.origin.x + inset, thumb.origin.y + inset};
    thumb.size = {std::max(0.0, thumb.size.width - 2 * inset),
                  std::max(0.0, thumb.size.height - 2 * inset)};
    painter.setColor(m_grip ? heldThumbColor : lit ? litThumbColor : thumbColor);
    painter.addRoundedRect(thumb, std::min(thumb.size.width, thumb.size.height) / 2);
    painter.fill();
    LumoObject::paint(config, rect);
}
