#pragma once

#include <deque>
#include <functional>
#include <mutex>
#include <utility>

#include "support/host_callbacks.h"

namespace QB::Test {

/// When a host runs main-thread work that was posted on the main thread itself.
enum class Delivery {
    AtOnce,  ///< inside the call
    Later    ///< as from an event loop: when deliver() is called
};

/// The host callbacks of either kind of host. Names are written as they are.
class LateHost : public HostCallbacks {
public:
    explicit LateHost(Delivery delivery) {
        Callback::formatIdentifier = [](const std::string& name, DatabaseType, int) {
            return name;
        };
        if (delivery == Delivery::AtOnce) return;
        queue() = this;
        Callback::runOperationOnMainThread = [](std::function<void()> f) {
            queue()->post(std::move(f));
        };
    }
    ~LateHost() { finishAll(); }

    /// Runs what waits for the main thread, and what that posts.
    void deliver() {
        runPending();
        while (auto f = next())
            f();
    }

    /// Delivers until every dispatched function has returned and nothing waits.
    void finishAll() {
        for (deliver(); hasWorkers() || isWaiting(); deliver())  // which may dispatch more
            awaitNews();
        finishWorkers();
    }

private:
    static LateHost*& queue() {
        static LateHost* host = nullptr;
        return host;
    }

    void post(std::function<void()> f) {
        {
            const std::lock_guard lock(m_queueMutex);
            m_queue.push_back(std::move(f));
        }
        tellNews();
    }

    bool isWaiting() {
        const std::lock_guard lock(m_queueMutex);
        return !m_queue.empty();
    }

    std::function<void()> next() {
        const std::lock_guard lock(m_queueMutex);
        if (m_queue.empty()) return {};
        auto f = std::move(m_queue.front());
        m_queue.pop_front();
        return f;
    }

    std::mutex m_queueMutex;
    std::deque<std::function<void()>> m_queue;  // guarded by m_queueMutex
};

}  // namespace QB::Test
