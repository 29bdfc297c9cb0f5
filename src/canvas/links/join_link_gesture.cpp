#include <algorithm>
#include <chrono>

#include <QApplication>

#include "canvas/base/context.h"
#include "canvas/diagram/diagram.h"
#include "canvas/links/join_link.h"
#include "platform/lumo/lumo_timer.h"

/// What a link does with the mouse. The context's functions may destroy it: nothing of it is used
/// after they were called.
namespace QB::DiagramLumo {
namespace {

constexpr int longestWait = 200;  // milliseconds until a click opens the editor

int64_t now() {
    const auto time = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(time).count();
}

bool isLeftAlone(const LumoEvent& event) {
    return event.containsOnlyEventKeys({LumoButtonLeft});
}

}  // namespace

QBLumoJoinLink::DoubleClickGestureData::~DoubleClickGestureData() {
    delete timer;
}

void QBLumoJoinLink::registerGesture() {
    registerEventResponder(LumoMouseMove, [this](const LumoEvent&) {
        LumoDiagram* const canvas = diagram();
        if (canvas) canvas->getContext()->notifyCursorChange(canvas, LumoCursorHand);
        return false;
    });
    registerEventResponder(LumoMouseDown,
                           [this](const LumoEvent& event) { return handleDown(event); });
    registerEventResponder(LumoMouseUp, [this](const LumoEvent& event) { return handleUp(event); });
    registerEventResponder(LumoMouseDoubleClick,
                           [this](const LumoEvent& event) { return handleDoubleClick(event); });
    // A drag from a link is a rubber band, and no click.
    registerEventResponder(LumoMouseDragging, [this](const LumoEvent&) {
        m_doubleClick.pressed = false;
        return true;
    });
}

bool QBLumoJoinLink::shouldTriggerMouseDown(LumoEvent event) {
    return hitTest(event.point, true, true);
}

bool QBLumoJoinLink::shouldTriggerMouseMove(LumoEvent event) {
    return hitTest(event.point, true, true);
}

bool QBLumoJoinLink::shouldTriggerMouseUp(LumoEvent event) {
    return hitTest(event.point, true, true);
}

bool QBLumoJoinLink::shouldTriggerMouseDoubleClick(LumoEvent event) {
    return hitTest(event.point, true, true);
}

bool QBLumoJoinLink::handleDown(const LumoEvent& event) {
    m_doubleClick.pressed = isLeftAlone(event);
    if (auto* const canvas = dynamic_cast<QBLumoDiagram*>(diagram()))
        canvas->handleJoinLinkPressed(this, event);
    return false;
}

bool QBLumoJoinLink::handleUp(const LumoEvent& event) {
    const bool isClick = m_doubleClick.pressed && isLeftAlone(event);
    m_doubleClick.pressed = false;
    if (isClick) waitForSecondClick(event.control);
    return false;
}

/// Two clicks that are too far apart for a double click wait together.
void QBLumoJoinLink::waitForSecondClick(LumoControl* control) {
    if (!m_doubleClick.timer) m_doubleClick.timer = lumoCreateTimer();
    m_doubleClick.waiting = true;
    m_doubleClick.timer->setTimerFunc([this](LumoTimer*) {
        cancelGesture();
        fireDoubleClicked();
    });
    m_doubleClick.timer->setTimerOwner(control);
    m_doubleClick.timer->startOnce(std::min(QApplication::doubleClickInterval(), longestWait));
}

/// The timer may have opened the editor between the clicks: then this was the same wish.
bool QBLumoJoinLink::handleDoubleClick(const LumoEvent& event) {
    if (!isLeftAlone(event)) return true;
    cancelGesture();
    const bool hasJustFired = m_doubleClick.firedAt >= 0 &&
                              now() - m_doubleClick.firedAt < QApplication::doubleClickInterval();
    if (!hasJustFired) fireDoubleClicked();
    return false;
}

void QBLumoJoinLink::cancelGesture() {
    m_doubleClick.waiting = false;
    m_doubleClick.pressed = false;
    if (m_doubleClick.timer) m_doubleClick.timer->stop();
}

void QBLumoJoinLink::fireDoubleClicked() {
    m_doubleClick.firedAt = now();
    invalidate();
    LumoDiagram* const canvas = diagram();
    auto* const context = canvas ? dynamic_cast<QBLumoContext*>(canvas->getContext()) : nullptr;
    if (context) context->joinLinkDoubleClicked(this, true);
}

}  // namespace QB::DiagramLumo
