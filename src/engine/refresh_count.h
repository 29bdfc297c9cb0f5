#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace QB {

/// Requests minus fetches of the refreshes that run. A hint, since a request may cause several
/// fetches or none: it may be zero or below during a refresh, and stay above zero after one.
/// Thread: any.
class RefreshCount {
public:
    using Deadline = std::chrono::steady_clock::time_point;

    void add(int requests) {
        const std::lock_guard lock(m_mutex);
        m_count += requests;
        if (m_count <= 0) m_noneRuns.notify_all();
    }

    bool isAboveZero() const {
        const std::lock_guard lock(m_mutex);
        return m_count > 0;
    }

    /// Waits while the count is above zero, no longer than until @p deadline. The caller holds no
    /// lock that a refresh or the main thread may want.
    void waitUntilNoneRuns(Deadline deadline) const {
        std::unique_lock lock(m_mutex);
        m_noneRuns.wait_until(lock, deadline, [this] { return m_count <= 0; });
    }

private:
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_noneRuns;
    int m_count = 0;
};

}  // namespace QB
