#pragma once

#include "platform/lumo/lumo_object.h"

class LumoVirtualScrollView;

class LumoVirtualScrollViewDelegate {
public:
    virtual ~LumoVirtualScrollViewDelegate() = default;
    virtual void scrollViewContentOffsetChanged(LumoVirtualScrollView* view) = 0;
    /// Whether a wheel, a bar or a drag may scroll @p vertical now.
    virtual bool scrollViewShouldScroll(LumoVirtualScrollView* view, bool vertical) = 0;
};

/// A part of a diagram with content that may be larger, and bars to scroll it: clips its children,
/// takes the wheel while there is somewhere to scroll to, lets its bars be dragged.
class LumoVirtualScrollView : public LumoObject {
public:
    LumoVirtualScrollView();

    void setScrollViewDelegate(LumoVirtualScrollViewDelegate* delegate);  // not owned
    /// @p takesRoom: the bar narrows the content rectangle instead of lying over it.
    void setEnableHorizontalScrollBar(bool enable, bool takesRoom);
    void setEnableVerticalScrollBar(bool enable, bool takesRoom);
    bool isHorizontalScrollBarEnabled() const;
    bool isVerticalScrollBarEnabled() const;
    /// True lets a wheel at the end of the content go on to what lies below; false keeps it.
    void setAutoJumpOut(bool jumpOut);
    /// A wheel step scrolls this part of the view's height.
    void setVerticalScrollBarScrollStepFactor(double factor);
    /// True shows the bar even where there is nothing to scroll.
    void setAlwaysShowScrollBar(bool always);
    void setScrollPadding(const LumoPadding& padding);

    virtual void setContentWidth(long width);
    virtual void setContentHeight(long height);
    long getContentWidth() const;
    long getContentHeight() const;
    /// Clamped to what there is to scroll.
    void setContentOffsetX(long x);
    void setContentOffsetY(long y);
    long getContentOffsetX() const;
    long getContentOffsetY() const;

    /// What clips the content; content objects are its children.
    LumoObject* contentObject() const;
    LumoRect getContentRect() const override;  // without the bars that take room

    void paint(LumoPaintConfig* config, LumoRect rect) override;

protected:
    void customLayout() override;
    /// After an offset changed.
    virtual void contentOffsetChanged();

private:
    struct State;
    const std::unique_ptr<State> m_state;
};
