#include "canvas/base/animation.h"

#include <algorithm>
#include <chrono>

#include "platform/lumo/lumo_object.h"
#include "platform/lumo/lumo_timer.h"

namespace QB::DiagramLumo {

namespace {

constexpr int tickInterval = 33;

int64_t nowInMilliseconds() {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::nanoseconds>(now).count() / 1000000;
}

}  // namespace

QBLumoAnimation::QBLumoAnimation(double duration) : m_duration(duration) {}

QBLumoAnimation::~QBLumoAnimation() {
    if (m_timer) m_timer->stopAnimation(this);
}

void QBLumoAnimation::setUpdateFunction(std::function<void(QBLumoAnimation*)> function) {
    m_update = std::move(function);
}

QBLumoAnimationTimer::QBLumoAnimationTimer(LumoControl* control, LumoObject* owner)
    : m_control(control), m_timer(lumoCreateTimer()), m_owner(owner) {}

QBLumoAnimationTimer::~QBLumoAnimationTimer() {
    for (QBLumoAnimation* animation : m_running) {
        animation->m_running = false;
        animation->m_timer = nullptr;
    }
}

void QBLumoAnimationTimer::playAnimation(QBLumoAnimation* animation) {
    if (animation->m_timer && animation->m_timer != this)
        animation->m_timer->stopAnimation(animation);
    m_timer->stop();
    m_timer->setTimerFunc([this](LumoTimer*) { tick(); });
    m_lastTick = nowInMilliseconds();
    m_timer->start(tickInterval, m_control);
    m_running.insert(animation);
    animation->m_running = true;
    animation->m_elapsed = 0;
    animation->m_timer = this;
    callUpdate(animation);
}

void QBLumoAnimationTimer::stopAnimation(QBLumoAnimation* animation) {
    if (m_running.erase(animation) == 0) return;
    animation->m_running = false;
    animation->m_timer = nullptr;
}

bool QBLumoAnimationTimer::isTicking() const {
    return m_timer->isRunning();
}

void QBLumoAnimationTimer::tick() {
    const int64_t now = nowInMilliseconds();
    // The system clock may be set back.
    const int64_t passed = std::max<int64_t>(now - m_lastTick, 0);
    m_lastTick = now;
    step(double(passed) / 1000.0);
    if (!m_running.empty()) return;
    m_timer->stop();
    m_owner->repaint();
}

void QBLumoAnimationTimer::step(double seconds) {
    // An update may stop or destroy any animation, so each is looked up before it is called.
    const std::set<QBLumoAnimation*> running = m_running;
    for (QBLumoAnimation* animation : running) {
        if (m_running.count(animation) == 0) continue;
        animation->m_elapsed = std::min(animation->m_duration, animation->m_elapsed + seconds);
        callUpdate(animation);
    }
    for (QBLumoAnimation* animation : running)
        if (m_running.count(animation) && animation->m_elapsed >= animation->m_duration)
            stopAnimation(animation);
}

void QBLumoAnimationTimer::callUpdate(QBLumoAnimation* animation) {
    const auto update = animation->m_update;
    if (update) update(animation);
}

}  // namespace QB::DiagramLumo
