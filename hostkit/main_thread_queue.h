#pragma once

#include <QEvent>
#include <QObject>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>

namespace QB::HostKit {

/// The functions that wait for the application's thread: a box under a mutex, and a bare event
/// that says that something lies in it. One for the process, never destroyed, so that a thread
/// that outlives the application still finds the mutex.
class MainThreadQueue {
public:
    static MainThreadQueue& instance();

    /// Serves the queue on the calling thread, which is the application's, until detach().
    /// Returns: false if it was served already.
    bool attach();
    void detach();

    /// Runs @p function at once on the served thread if nothing waits, otherwise queues it.
    /// Returns: false if nobody serves the queue; the function is then destroyed unrun.
    bool post(std::function<void()> function);

    /// Runs what waits, on the served thread; for the end, when no event loop runs any more, and
    /// for programs that have none.
    void runWaiting();

    /// Waits on the served thread, without an event loop, until a function is there or @p isDone,
    /// which is asked again after each wake(). It is called under a lock: no call of the queue's.
    void waitForFunction(const std::function<bool()>& isDone);
    void wake();

private:
    class Receiver;

    void postWakeEvent();
    void meetPoster();
    bool takeNext(std::function<void()>& function, bool isWakeTaken);
    void runNext();

    std::mutex m_mutex;
    std::condition_variable m_woken;
    std::deque<std::function<void()>> m_functions;  // guarded by m_mutex
    std::unique_ptr<Receiver> m_receiver;  // guarded by m_mutex; lives on the served thread
    bool m_wakePosted = false;             // guarded by m_mutex: an event is on its way
};

/// Calls @p function and hands what it throws to reportError: nobody above could catch it.
void runGuarded(const std::function<void()>& function);

}  // namespace QB::HostKit
