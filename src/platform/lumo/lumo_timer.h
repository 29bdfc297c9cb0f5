#pragma once

#include <functional>
#include <memory>

class LumoControl;

/// A timer of the canvas. Its function may stop, restart or destroy the timer.
class LumoTimer {
public:
    LumoTimer();
    virtual ~LumoTimer();
    LumoTimer(const LumoTimer&) = delete;
    LumoTimer& operator=(const LumoTimer&) = delete;

    void setTimerFunc(std::function<void(LumoTimer*)> function);
    /// The control that the timer works for, or null; not owned. It need not live: it is compared
    /// and handed back, not used.
    void setTimerOwner(LumoControl* owner);
    LumoControl* timerOwner() const;
    /// Fires every @p milliseconds until stopped.
    virtual void start(int milliseconds, LumoControl* owner);
    virtual void startOnce(int milliseconds);
    virtual void stop();
    bool isRunning() const;
    /// How many run now that were not started once. For tests: none runs while nothing moves.
    static int repeatingCount();

private:
    struct State;
    const std::shared_ptr<State> m_state;
};

/// Ownership: the caller's.
[[nodiscard]] LumoTimer* lumoCreateTimer();
