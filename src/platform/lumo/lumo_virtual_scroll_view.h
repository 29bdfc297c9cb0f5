#pragma once

#include <memory>

#include "platform/lumo/lumo_object.h"

struct LumoScrollRange;
class LumoVirtualScrollView;

class LumoVirtualScrollViewDelegate {
public:
    virtual ~LumoVirtualScrollViewDelegate() = default;
    /// Places the content; without a delegate the view moves what contentObject holds.
    virtual void scrollViewContentOffsetChanged(LumoVirtualScrollView* view) = 0;
    /// Whether the user may scroll along the axis now, by wheel or bar. A wheel that may not goes
    /// on to what lies below.
    virtual bool scrollViewShouldScroll(LumoVirtualScrollView* view, bool vertical) = 0;
};

/// A part of a diagram with content that may be larger, and bars to scroll it: clips its content,
/// takes the wheel while there is something to scroll, lets its bars be dragged and paged.
class LumoVirtualScrollView : public LumoObject {
public:
    LumoVirtualScrollView();
    ~LumoVirtualScrollView() override;

    void setScrollViewDelegate(LumoVirtualScrollViewDelegate* delegate);  // not owned
    /// @p takesRoom: the bar narrows the content rectangle instead of lying over it.
    void setEnableHorizontalScrollBar(bool enable, bool takesRoom);
    void setEnableVerticalScrollBar(bool enable, bool takesRoom);
    bool isHorizontalScrollBarEnabled() const;
    bool isVerticalScrollBarEnabled() const;
    /// True lets a wheel at the end of the content go on to what lies below; false keeps it. Where
    /// all of the content shows it always goes on.
    void setAutoJumpOut(bool jumpOut);
    /// A notch of the wheel scrolls this part of what shows, along either axis; 0.2 at first.
    void setVerticalScrollBarScrollStepFactor(double factor);
    /// True shows the bar even where there is nothing to scroll.
    void setAlwaysShowScrollBar(bool always);
    /// Insets of content and bars from the edges of the view.
    void setScrollPadding(const LumoPadding& padding);

    virtual void setContentWidth(long width);
    virtual void setContentHeight(long height);
    long getContentWidth() const;
    long getContentHeight() const;
    /// Clamped to what there is to scroll, as is the offset whenever content or view shrink.
    void setContentOffsetX(long x);
    void setContentOffsetY(long y);
    long getContentOffsetX() const;
    long getContentOffsetY() const;

    /// What clips the content; content objects are its children. Owned by the view.
    LumoObject* contentObject() const;
    /// Without the padding and the bars that take room.
    LumoRect getContentRect() const override;

protected:
    void customLayout() override;
    /// After an offset changed: tells the delegate.
    virtual void contentOffsetChanged();

private:
    struct Axis;
    struct State;
    struct Places;
    Places places() const;
    LumoScrollRange rangeOf(bool vertical) const;
    void setEnabled(bool vertical, bool enable, bool takesRoom);
    void setContentLength(bool vertical, long length);
    void setOffset(bool vertical, long offset);
    void scrollByUser(bool vertical, long offset);
    bool takeWheel(bool vertical, int32_t pixels);
    void updateBars();

    const std::unique_ptr<State> m_state;
};
