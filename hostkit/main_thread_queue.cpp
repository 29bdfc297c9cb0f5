#include "hostkit/main_thread_queue.h"

#include <QCoreApplication>
#include <QThread>
#include <stdexcept>

#include "hostkit/threads.h"

namespace QB::HostKit {

/// Turns the wake event into a call. The event carries nothing: what it announces is in the box.
class MainThreadQueue::Receiver : public QObject {
public:
    static QEvent::Type wakeType() {
        static const int type = QEvent::registerEventType();
        return static_cast<QEvent::Type>(type);
    }

    bool event(QEvent* event) override {
        MainThreadQueue::instance().meetPoster();
        if (event->type() != wakeType()) return QObject::event(event);
        MainThreadQueue::instance().runNext();
        return true;
    }
};

MainThreadQueue& MainThreadQueue::instance() {
    static auto* const queue = new MainThreadQueue;
    return *queue;
}

bool MainThreadQueue::attach() {
    const std::lock_guard lock(m_mutex);
    if (m_receiver) return false;
    m_receiver = std::make_unique<Receiver>();
    m_wakePosted = false;
    return true;
}

void MainThreadQueue::detach() {
    std::unique_ptr<Receiver> receiver;
    std::deque<std::function<void()>> dropped;
    {
        const std::lock_guard lock(m_mutex);
        receiver.swap(m_receiver);
        dropped.swap(m_functions);
    }
    // What the functions own goes out here, without the lock.
}

bool MainThreadQueue::post(std::function<void()> function) {
    {
        const std::lock_guard lock(m_mutex);
        if (!m_receiver) return false;
        const bool isHere = m_receiver->thread() == QThread::currentThread();
        if (!isHere || !m_functions.empty()) {
            m_functions.push_back(std::move(function));
            postWakeEvent();
            m_woken.notify_one();
            return true;
        }
    }
    function();
    return true;
}

/// The caller holds the mutex, so that the receiver cannot go meanwhile.
void MainThreadQueue::postWakeEvent() {
    if (m_wakePosted) return;
    m_wakePosted = true;
    QCoreApplication::postEvent(m_receiver.get(), new QEvent(Receiver::wakeType()));
}

/// Events are made and posted under the mutex: once it was had, what they hold may be read, without
/// relying on what Qt does inside.
void MainThreadQueue::meetPoster() {
    const std::lock_guard lock(m_mutex);
}

bool MainThreadQueue::takeNext(std::function<void()>& function, bool isWakeTaken) {
    const std::lock_guard lock(m_mutex);
    if (isWakeTaken) m_wakePosted = false;
    if (m_functions.empty()) return false;
    function = std::move(m_functions.front());
    m_functions.pop_front();
    // Posted before the function runs: it may start an event loop of its own.
    if (!m_functions.empty()) postWakeEvent();
    return true;
}

void MainThreadQueue::runNext() {
    std::function<void()> function;
    if (takeNext(function, true)) runGuarded(function);
}

void MainThreadQueue::runWaiting() {
    for (std::function<void()> function; takeNext(function, false); function = nullptr)
        runGuarded(function);
}

void MainThreadQueue::waitForFunction(const std::function<bool()>& isDone) {
    std::unique_lock lock(m_mutex);
    m_woken.wait(lock, [&] { return !m_functions.empty() || isDone(); });
}

void MainThreadQueue::wake() {
    // Under the mutex, so that no one is between asking and waiting.
    const std::lock_guard lock(m_mutex);
    m_woken.notify_one();
}

void runGuarded(const std::function<void()>& function) {
    try {
        function();
    } catch (const std::exception& error) {
        reportError(error.what());
    } catch (std::runtime_error* error) {
        // The engine's form of a broken protocol.
        const std::unique_ptr<std::runtime_error> owner(error);
        reportError(error->what());
    }
}

}  // namespace QB::HostKit
