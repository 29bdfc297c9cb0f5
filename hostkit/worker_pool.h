#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

namespace QB::HostKit {

/// The worker threads: reused when idle, otherwise started anew, since a function may block. One
/// pool for the process, never destroyed, for the sake of threads that outlive the application.
class WorkerPool {
public:
    static constexpr int maxThreads = 64;
    static constexpr std::chrono::seconds idleLife{10};

    static WorkerPool& instance();

    /// Accepts functions again after shutDown().
    void start();

    /// Returns: false after shutDown(); the function is then destroyed unrun.
    bool post(std::function<void()> function);

    /// Has every idle thread call the housekeeping function; busy ones call it when they are done.
    void tidyIdleThreads();

    /// What threads call before they idle and before they end. Set before the first post.
    void setHousekeeping(void (*beforeIdle)(), void (*beforeEnd)());

    /// Drops what has not started and has every thread end as soon as it is idle.
    void shutDown();

    /// Waits up to @p limit for the threads to end after shutDown(), and joins those that did.
    /// Returns: true if none is left.
    bool waitForEnd(std::chrono::milliseconds limit);

private:
    using Lock = std::unique_lock<std::mutex>;

    void startThread();
    void runThread();
    bool waitForWork(Lock& lock, unsigned& tidiedRound);
    void runOne(Lock& lock);
    void tidy(Lock& lock, unsigned& tidiedRound);
    void leave(Lock& lock);

    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::condition_variable m_threadEnded;
    // All below guarded by m_mutex.
    std::deque<std::function<void()>> m_functions;
    std::map<std::thread::id, std::thread> m_threads;
    std::vector<std::thread> m_ended;  // past their last use of the pool: joined by the next caller
    int m_idle = 0;
    unsigned m_tidyRound = 0;
    bool m_isShutDown = false;
    void (*m_beforeIdle)() = nullptr;
    void (*m_beforeEnd)() = nullptr;
};

}  // namespace QB::HostKit
