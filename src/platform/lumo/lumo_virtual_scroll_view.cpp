#include "platform/lumo/lumo_virtual_scroll_view.h"

#include <algorithm>
#include <cmath>

#include "platform/lumo/lumo_scroll_bar.h"

namespace {

class ClippingObject : public LumoObject {
public:
    bool clipsChildren() const override { return true; }
};

}  // namespace

struct LumoVirtualScrollView::Axis {
    bool enabled = false;
    bool takesRoom = false;
    long length = 0;               // of the content
    long offset = 0;               // into the content
    long placed = 0;               // the offset that the content was moved by, without a delegate
    double wheelRest = 0;          // pixels that a wheel scrolled less than a whole one
    LumoScrollBar* bar = nullptr;  // owned as a child
};

struct LumoVirtualScrollView::State {
    Axis horizontal;
    Axis vertical;
    LumoVirtualScrollViewDelegate* delegate = nullptr;  // not owned
    bool jumpOut = true;
    bool alwaysShow = false;
    double stepFactor = 0.2;
    LumoPadding padding;
    LumoObject* content = nullptr;  // owned as a child

    Axis& axis(bool isVertical) { return isVertical ? vertical : horizontal; }
};

struct LumoVirtualScrollView::Places {
    LumoRect content;
    LumoRect horizontalBar;
    LumoRect verticalBar;
    bool horizontalShows = false;
    bool verticalShows = false;
};

LumoVirtualScrollView::LumoVirtualScrollView() : m_state(std::make_unique<State>()) {
    m_state->content = new ClippingObject;
    LumoObject::addChild(m_state->content, 0);
    for (const bool vertical : {false, true}) {
        auto* const bar = new LumoScrollBar(
            vertical, [this, vertical](long offset) { scrollByUser(vertical, offset); });
        bar->setVisible(false);
        LumoObject::addChild(bar, 1);
        m_state->axis(vertical).bar = bar;
    }
    registerEventResponder(LumoMouseWheel, [this](const LumoEvent& event) {
        const bool tookVertical = takeWheel(true, event.wheel.y);
        const bool tookHorizontal = takeWheel(false, event.wheel.x);
        return !tookVertical && !tookHorizontal;
    });
}

LumoVirtualScrollView::~LumoVirtualScrollView() = default;

void LumoVirtualScrollView::setScrollViewDelegate(LumoVirtualScrollViewDelegate* delegate) {
    m_state->delegate = delegate;
}

// ---- what shows ----

void LumoVirtualScrollView::setEnableHorizontalScrollBar(bool enable, bool takesRoom) {
    setEnabled(false, enable, takesRoom);
}

void LumoVirtualScrollView::setEnableVerticalScrollBar(bool enable, bool takesRoom) {
    setEnabled(true, enable, takesRoom);
}

void LumoVirtualScrollView::setEnabled(bool vertical, bool enable, bool takesRoom) {
    Axis& axis = m_state->axis(vertical);
    axis.enabled = enable;
    axis.takesRoom = takesRoom;
    setRequireToVerifyLayout(true);
}

bool LumoVirtualScrollView::isHorizontalScrollBarEnabled() const {
    return m_state->horizontal.enabled;
}

bool LumoVirtualScrollView::isVerticalScrollBarEnabled() const {
    return m_state->vertical.enabled;
}

void LumoVirtualScrollView::setAutoJumpOut(bool jumpOut) {
    m_state->jumpOut = jumpOut;
}

void LumoVirtualScrollView::setVerticalScrollBarScrollStepFactor(double factor) {
    m_state->stepFactor = factor;
}

void LumoVirtualScrollView::setAlwaysShowScrollBar(bool always) {
    m_state->alwaysShow = always;
    setRequireToVerifyLayout(true);
}

void LumoVirtualScrollView::setScrollPadding(const LumoPadding& padding) {
    m_state->padding = padding;
    setRequireToVerifyLayout(true);
}

LumoObject* LumoVirtualScrollView::contentObject() const {
    return m_state->content;
}

LumoVirtualScrollView::Places LumoVirtualScrollView::places() const {
    const State& state = *m_state;
    const LumoSize size = getRect().size;
    const LumoRect area(state.padding.left, state.padding.top,
                        std::max(0, size.width - state.padding.left - state.padding.right),
                        std::max(0, size.height - state.padding.top - state.padding.bottom));
    Places places;
    places.content = area;
    // A bar that takes room may make the other one necessary.
    for (int round = 0; round < 2; ++round) {
        const LumoSize room = places.content.size;
        places.horizontalShows =
            state.horizontal.enabled && (state.alwaysShow || state.horizontal.length > room.width);
        places.verticalShows =
            state.vertical.enabled && (state.alwaysShow || state.vertical.length > room.height);
        if (places.verticalShows && state.vertical.takesRoom)
            places.content.size.width = std::max(0, area.size.width - LumoScrollBar::thickness);
        if (places.horizontalShows && state.horizontal.takesRoom)
            places.content.size.height = std::max(0, area.size.height - LumoScrollBar::thickness);
    }
    const int32_t corner =
        places.horizontalShows && places.verticalShows ? LumoScrollBar::thickness : 0;
    places.verticalBar = {lumoMaxX(area) - LumoScrollBar::thickness, area.origin.y,
                          LumoScrollBar::thickness, std::max(0, area.size.height - corner)};
    places.horizontalBar = {area.origin.x, lumoMaxY(area) - LumoScrollBar::thickness,
                            std::max(0, area.size.width - corner), LumoScrollBar::thickness};
    return places;
}

LumoRect LumoVirtualScrollView::getContentRect() const {
    return places().content;
}

void LumoVirtualScrollView::customLayout() {
    LumoObject::customLayout();
    const Places at = places();
    m_state->content->setRect(at.content);
    m_state->horizontal.bar->setRect(at.horizontalBar);
    m_state->vertical.bar->setRect(at.verticalBar);
    m_state->horizontal.bar->setVisible(at.horizontalShows);
    m_state->vertical.bar->setVisible(at.verticalShows);
    setOffset(false, m_state->horizontal.offset);
    setOffset(true, m_state->vertical.offset);
    updateBars();
}

void LumoVirtualScrollView::updateBars() {
    m_state->horizontal.bar->setRange(rangeOf(false));
    m_state->vertical.bar->setRange(rangeOf(true));
}

// ---- content ----

void LumoVirtualScrollView::setContentWidth(long width) {
    setContentLength(false, width);
}

void LumoVirtualScrollView::setContentHeight(long height) {
    setContentLength(true, height);
}

void LumoVirtualScrollView::setContentLength(bool vertical, long length) {
    Axis& axis = m_state->axis(vertical);
    if (axis.length == length) return;
    axis.length = length;
    setRequireToVerifyLayout(true);
    setOffset(vertical, axis.offset);
    updateBars();
}

long LumoVirtualScrollView::getContentWidth() const {
    return m_state->horizontal.length;
}

long LumoVirtualScrollView::getContentHeight() const {
    return m_state->vertical.length;
}

void LumoVirtualScrollView::setContentOffsetX(long x) {
    setOffset(false, x);
}

void LumoVirtualScrollView::setContentOffsetY(long y) {
    setOffset(true, y);
}

long LumoVirtualScrollView::getContentOffsetX() const {
    return m_state->horizontal.offset;
}

long LumoVirtualScrollView::getContentOffsetY() const {
    return m_state->vertical.offset;
}

LumoScrollRange LumoVirtualScrollView::rangeOf(bool vertical) const {
    const LumoSize page = places().content.size;
    const Axis& axis = m_state->axis(vertical);
    return {axis.length, vertical ? page.height : page.width, axis.offset};
}

void LumoVirtualScrollView::setOffset(bool vertical, long offset) {
    Axis& axis = m_state->axis(vertical);
    const long clamped = rangeOf(vertical).clamped(offset);
    if (axis.offset == clamped) return;
    axis.offset = clamped;
    axis.bar->setRange(rangeOf(vertical));
    contentOffsetChanged();
}

void LumoVirtualScrollView::contentOffsetChanged() {
    if (m_state->delegate) return m_state->delegate->scrollViewContentOffsetChanged(this);
    Axis& x = m_state->horizontal;
    Axis& y = m_state->vertical;
    const LumoPoint step{int32_t(x.placed - x.offset), int32_t(y.placed - y.offset)};
    x.placed = x.offset;
    y.placed = y.offset;
    for (LumoObject* child : m_state->content->getChildren())
        child->setRect(lumoMovedRect(child->getRect(), step));
}

// ---- what the user does ----

void LumoVirtualScrollView::scrollByUser(bool vertical, long offset) {
    LumoVirtualScrollViewDelegate* const delegate = m_state->delegate;
    if (delegate && !delegate->scrollViewShouldScroll(this, vertical)) return;
    setOffset(vertical, offset);
}

/// True if the wheel is not to go on to what lies below.
bool LumoVirtualScrollView::takeWheel(bool vertical, int32_t pixels) {
    Axis& axis = m_state->axis(vertical);
    const LumoScrollRange range = rangeOf(vertical);
    if (pixels == 0 || !axis.enabled || range.maximum() == 0) return false;
    LumoVirtualScrollViewDelegate* const delegate = m_state->delegate;
    if (delegate && !delegate->scrollViewShouldScroll(this, vertical)) return false;
    const long end = pixels > 0 ? range.maximum() : 0;
    if (axis.offset == end) {
        axis.wheelRest = 0;
        return !m_state->jumpOut;
    }
    axis.wheelRest += pixels * m_state->stepFactor * double(range.page) / lumoWheelNotch;
    const double whole = std::trunc(axis.wheelRest);
    axis.wheelRest -= whole;
    setOffset(vertical, axis.offset + long(whole));
    return true;
}
