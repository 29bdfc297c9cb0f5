#include "canvas/controls/scroll_view.h"

#include "canvas/base/object.h"

namespace QB::DiagramLumo {

namespace {
constexpr double wheelStep = 0.2;  // of the view's height
}

QBLumoScrollView::QBLumoScrollView() : m_content(new QBLumoObject) {
    setAutoJumpOut(false);
    setVerticalScrollBarScrollStepFactor(wheelStep);
    contentObject()->setRect(getContentRect());
    m_content->setRect(contentObject()->getBoundingRect());
    contentObject()->addChild(m_content);
    setScrollViewDelegate(this);
}

QBLumoScrollView::~QBLumoScrollView() {
    setScrollViewDelegate(nullptr);
}

QBLumoObject* QBLumoScrollView::getContentObject() const {
    return m_content;
}

void QBLumoScrollView::setHorizontalScrollEnabled(bool enabled) {
    m_horizontalScrollEnabled = enabled;
}

void QBLumoScrollView::setVerticalScrollDisabled(bool disabled) {
    m_verticalScrollDisabled = disabled;
}

void QBLumoScrollView::setRect(const LumoRect& rect) {
    const LumoRect before = getRect();
    if (before == rect) return;
    if (before.size != rect.size) captureMargins(this);
    LumoVirtualScrollView::setRect(rect);
    m_rectChanged.fire(this, before);
}

void QBLumoScrollView::customLayout() {
    LumoVirtualScrollView::customLayout();
    applyMargins(this);
}

void QBLumoScrollView::setContentWidth(long width) {
    LumoVirtualScrollView::setContentWidth(width);
    LumoRect rect = m_content->getRect();
    rect.size.width = int32_t(width);
    m_content->setRect(rect);
}

void QBLumoScrollView::setContentHeight(long height) {
    LumoVirtualScrollView::setContentHeight(height);
    LumoRect rect = m_content->getRect();
    rect.size.height = int32_t(height);
    m_content->setRect(rect);
}

void QBLumoScrollView::scrollViewContentOffsetChanged(LumoVirtualScrollView*) {
    LumoRect rect = m_content->getRect();
    if (isHorizontalScrollBarEnabled()) rect.origin.x = -int32_t(getContentOffsetX());
    if (isVerticalScrollBarEnabled()) rect.origin.y = -int32_t(getContentOffsetY());
    m_content->setRect(rect);
    m_offsetChanged.fire(this);
}

bool QBLumoScrollView::scrollViewShouldScroll(LumoVirtualScrollView*, bool vertical) {
    return vertical ? !m_verticalScrollDisabled : m_horizontalScrollEnabled;
}

}  // namespace QB::DiagramLumo
