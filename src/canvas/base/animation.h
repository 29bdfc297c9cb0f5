#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <set>

class LumoControl;
class LumoObject;
class LumoTimer;

namespace QB::DiagramLumo {

class QBLumoAnimationTimer;

/// Something that runs for a time. Leaves its timer when destroyed.
class QBLumoAnimation {
public:
    /// @p duration in seconds.
    explicit QBLumoAnimation(double duration);
    virtual ~QBLumoAnimation();
    QBLumoAnimation(const QBLumoAnimation&) = delete;
    QBLumoAnimation& operator=(const QBLumoAnimation&) = delete;

    double duration() const { return m_duration; }
    double elapsed() const { return m_elapsed; }
    bool isRunning() const { return m_running; }
    /// Called at the start and at each tick; may stop or destroy the animation.
    void setUpdateFunction(std::function<void(QBLumoAnimation*)> function);

private:
    friend class QBLumoAnimationTimer;
    double m_duration;
    bool m_running = false;
    double m_elapsed = 0;
    std::function<void(QBLumoAnimation*)> m_update;
    QBLumoAnimationTimer* m_timer = nullptr;  // not owned; null while not running
};

/// Drives the animations of a diagram at 33 ms a tick, and stands still while there are none.
class QBLumoAnimationTimer {
public:
    /// @p owner is repainted after the last tick only; an animation's update invalidates what it
    /// changes. @p control and @p owner are not owned.
    QBLumoAnimationTimer(LumoControl* control, LumoObject* owner);
    ~QBLumoAnimationTimer();
    QBLumoAnimationTimer(const QBLumoAnimationTimer&) = delete;
    QBLumoAnimationTimer& operator=(const QBLumoAnimationTimer&) = delete;

    /// From its beginning; others that run go on from where they are.
    void playAnimation(QBLumoAnimation* animation);
    void stopAnimation(QBLumoAnimation* animation);
    bool isTicking() const;
    /// What a tick does after @p seconds: all that run advance, those at their end stop.
    void step(double seconds);

private:
    void tick();
    static void callUpdate(QBLumoAnimation* animation);

    LumoControl* const m_control;  // not owned
    const std::unique_ptr<LumoTimer> m_timer;
    LumoObject* const m_owner;             // not owned
    int64_t m_lastTick = 0;                // milliseconds
    std::set<QBLumoAnimation*> m_running;  // not owned
};

}  // namespace QB::DiagramLumo
