#pragma once

#include <functional>
#include <optional>

#include "platform/lumo/lumo_object.h"

/// What a bar stands for, along its axis.
struct LumoScrollRange {
    long content = 0;
    long page = 0;  // the part of the content that shows
    long offset = 0;

    long maximum() const { return content > page ? content - page : 0; }
    long clamped(long wanted) const;
};
inline bool operator==(const LumoScrollRange& a, const LumoScrollRange& b) {
    return a.content == b.content && a.page == b.page && a.offset == b.offset;
}

/// What is dragged, along a groove that begins at 0.
struct LumoScrollThumb {
    double start = 0;
    double length = 0;
};
LumoScrollThumb lumoScrollThumb(const LumoScrollRange& range, int32_t groove);
/// The offset at which the thumb begins at @p start; clamped.
long lumoScrollOffsetAt(const LumoScrollRange& range, int32_t groove, double start);

/// A thin bar at the edge of what it scrolls: the thumb is dragged, a click beside it pages.
class LumoScrollBar : public LumoObject {
public:
    static constexpr int32_t thickness = 8;

    /// @p scrollTo is called for what the user does, with an offset within the range; it sets the
    /// range anew, or does not scroll.
    LumoScrollBar(bool vertical, std::function<void(long)> scrollTo);

    const LumoScrollRange& range() const { return m_range; }
    void setRange(const LumoScrollRange& range);
    /// Of the thumb, in own space.
    LumoDoubleRect thumbRect() const;

    void paint(LumoPaintConfig* config, LumoRect rect) override;
    bool shouldForwardEventToNeighbors(LumoEvent event) override;

private:
    bool press(const LumoEvent& event);
    bool drag(const LumoEvent& event);
    bool release(const LumoEvent& event);
    int32_t along(LumoPoint point) const { return m_vertical ? point.y : point.x; }
    int32_t groove() const;
    void setGrip(std::optional<double> grip);

    const bool m_vertical;
    const std::function<void(long)> m_scrollTo;
    LumoScrollRange m_range;
    std::optional<double> m_grip;  // from the thumb's start to the press, while it is held
};
