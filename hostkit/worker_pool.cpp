#include "hostkit/worker_pool.h"

#include "hostkit/main_thread_queue.h"

namespace QB::HostKit {
namespace {

void call(void (*function)()) {
    if (function) function();
}

void joinAll(std::vector<std::thread> threads) {
    for (std::thread& thread : threads)
        thread.join();
}

}  // namespace

WorkerPool& WorkerPool::instance() {
    static auto* const pool = new WorkerPool;
    return *pool;
}

void WorkerPool::start() {
    const std::lock_guard lock(m_mutex);
    m_isShutDown = false;
}

void WorkerPool::setHousekeeping(void (*beforeIdle)(), void (*beforeEnd)()) {
    const std::lock_guard lock(m_mutex);
    m_beforeIdle = beforeIdle;
    m_beforeEnd = beforeEnd;
}

bool WorkerPool::post(std::function<void()> function) {
    std::vector<std::thread> ended;
    {
        const std::lock_guard lock(m_mutex);
        if (m_isShutDown) return false;
        m_functions.push_back(std::move(function));
        // An idle thread that has been woken still counts as idle until it has the mutex, hence
        // the comparison with the number of functions rather than with zero.
        const bool isEnough = static_cast<int>(m_functions.size()) <= m_idle;
        if (!isEnough && m_threads.size() < maxThreads) startThread();
        ended.swap(m_ended);
    }
    m_wake.notify_one();
    joinAll(std::move(ended));
    return true;
}

void WorkerPool::tidyIdleThreads() {
    {
        const std::lock_guard lock(m_mutex);
        ++m_tidyRound;
    }
    m_wake.notify_all();
}

void WorkerPool::shutDown() {
    std::deque<std::function<void()>> dropped;
    {
        const std::lock_guard lock(m_mutex);
        m_isShutDown = true;
        dropped.swap(m_functions);
    }
    m_wake.notify_all();
}

bool WorkerPool::waitForEnd(std::chrono::milliseconds limit) {
    std::vector<std::thread> ended;
    Lock lock(m_mutex);
    m_threadEnded.wait_for(lock, limit, [this] { return m_threads.empty(); });
    ended.swap(m_ended);
    const bool isLastGone = m_threads.empty();
    lock.unlock();
    joinAll(std::move(ended));
    return isLastGone;
}

/// The caller holds the mutex, so the thread finds its own entry.
void WorkerPool::startThread() {
    std::thread thread([this] { runThread(); });
    const std::thread::id id = thread.get_id();
    m_threads.emplace(id, std::move(thread));
}

void WorkerPool::runThread() {
    Lock lock(m_mutex);
    unsigned tidiedRound = m_tidyRound;
    while (waitForWork(lock, tidiedRound)) {
        runOne(lock);
        tidy(lock, tidiedRound);
    }
    leave(lock);
}

void WorkerPool::runOne(Lock& lock) {
    std::function<void()> function = std::move(m_functions.front());
    m_functions.pop_front();
    lock.unlock();
    runGuarded(function);
    function = nullptr;
    lock.lock();
}

/// The round is noted before the work: a round that begins meanwhile is served again.
void WorkerPool::tidy(Lock& lock, unsigned& tidiedRound) {
    tidiedRound = m_tidyRound;
    lock.unlock();
    call(m_beforeIdle);
    lock.lock();
}

/// Returns: false when the thread is to end.
bool WorkerPool::waitForWork(Lock& lock, unsigned& tidiedRound) {
    const auto deadline = std::chrono::steady_clock::now() + idleLife;
    const auto isCalled = [this, &tidiedRound] {
        return m_isShutDown || !m_functions.empty() || tidiedRound != m_tidyRound;
    };
    for (;;) {
        ++m_idle;
        const bool isInTime = m_wake.wait_until(lock, deadline, isCalled);
        --m_idle;
        if (!m_functions.empty()) return true;
        if (m_isShutDown || !isInTime) return false;
        tidy(lock, tidiedRound);
    }
}

void WorkerPool::leave(Lock& lock) {
    lock.unlock();
    call(m_beforeEnd);
    lock.lock();
    const auto self = m_threads.find(std::this_thread::get_id());
    m_ended.push_back(std::move(self->second));
    m_threads.erase(self);
    // At the cap a function may have been queued while this thread was on its way out.
    if (!m_functions.empty() && m_idle == 0) startThread();
    m_threadEnded.notify_all();
}

}  // namespace QB::HostKit
