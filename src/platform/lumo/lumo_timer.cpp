#include "platform/lumo/lumo_timer.h"

#include <algorithm>
#include <set>
#include <utility>

#include <QTimer>

namespace {

std::set<const QTimer*>& clocks() {
    static std::set<const QTimer*> all;  // not owned
    return all;
}

}  // namespace

/// Shared with the call that runs, which outlives a timer that its function destroys.
struct LumoTimer::State {
    QTimer clock;
    std::function<void(LumoTimer*)> function;
    LumoControl* owner = nullptr;  // not owned, never used
    LumoTimer* timer = nullptr;    // not owned; null once that is destroyed
    unsigned settings = 0;         // grows with each setTimerFunc
};

LumoTimer::LumoTimer() : m_state(std::make_shared<State>()) {
    m_state->timer = this;
    clocks().insert(&m_state->clock);
    State* const state = m_state.get();
    QObject::connect(&state->clock, &QTimer::timeout, &state->clock, [state] {
        // Moved out: the function may replace or destroy itself.
        const std::shared_ptr<State> kept = state->timer->m_state;
        std::function<void(LumoTimer*)> running = std::move(state->function);
        const unsigned settings = state->settings;
        if (running) running(state->timer);
        if (state->timer && state->settings == settings) state->function = std::move(running);
    });
}

LumoTimer::~LumoTimer() {
    m_state->clock.stop();
    clocks().erase(&m_state->clock);
    m_state->timer = nullptr;
}

void LumoTimer::setTimerFunc(std::function<void(LumoTimer*)> function) {
    ++m_state->settings;
    m_state->function = std::move(function);
}

void LumoTimer::setTimerOwner(LumoControl* owner) {
    m_state->owner = owner;
}

LumoControl* LumoTimer::timerOwner() const {
    return m_state->owner;
}

void LumoTimer::start(int milliseconds, LumoControl* owner) {
    m_state->owner = owner;
    m_state->clock.setSingleShot(false);
    m_state->clock.start(milliseconds);
}

void LumoTimer::startOnce(int milliseconds) {
    m_state->clock.setSingleShot(true);
    m_state->clock.start(milliseconds);
}

void LumoTimer::stop() {
    m_state->clock.stop();
}

bool LumoTimer::isRunning() const {
    return m_state->clock.isActive();
}

int LumoTimer::repeatingCount() {
    const auto repeats = [](const QTimer* clock) {
        return clock->isActive() && !clock->isSingleShot();
    };
    return int(std::count_if(clocks().begin(), clocks().end(), repeats));
}

LumoTimer* lumoCreateTimer() {
    return new LumoTimer;
}
