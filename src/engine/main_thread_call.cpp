#include "engine/main_thread_call.h"

#include <QScopeGuard>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <utility>

#include "model/callbacks.h"
#include "model/liveness.h"

namespace QB {
namespace {

/// Where a caller waits for its closure. Shared, since either side may be gone first.
class Waiter {
public:
    void noteRan() {
        const std::lock_guard lock(m_mutex);
        m_hasRun = true;
    }

    void wake() {
        const std::lock_guard lock(m_mutex);
        m_isDone = true;
        m_wakeUp.notify_all();
    }

    bool wait() {
        std::unique_lock lock(m_mutex);
        m_wakeUp.wait(lock, [this] { return m_isDone; });
        return m_hasRun;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_wakeUp;
    bool m_isDone = false;
    bool m_hasRun = false;
};

/// Held by the closure: wakes the caller also when the closure is destroyed without having run.
class Waker {
public:
    explicit Waker(std::shared_ptr<Waiter> waiter) : m_waiter(std::move(waiter)) {}
    ~Waker() { m_waiter->wake(); }
    Waker(const Waker&) = delete;
    Waker& operator=(const Waker&) = delete;

    Waiter& waiter() const { return *m_waiter; }

private:
    const std::shared_ptr<Waiter> m_waiter;
};

void runForOwner(long id, const std::function<void()>& call) {
    runIfAlive(id, [&call](bool alive) {
        if (alive) call();
    });
}

}  // namespace

bool isAlive(long id) {
    bool result = false;
    runIfAlive(id, [&result](bool alive) { result = alive; });
    return result;
}

void postToMainThread(long id, std::function<void()> call) {
    Callback::runOperationOnMainThread([id, call = std::move(call)] { runForOwner(id, call); });
}

bool callOnMainThread(long id, std::function<void()> call) {
    const auto waiter = std::make_shared<Waiter>();
    auto waker = std::make_shared<Waker>(waiter);
    Callback::runOperationOnMainThread([id, call = std::move(call), waker = std::move(waker)] {
        const auto wake = qScopeGuard([&waker] { waker->waiter().wake(); });
        runForOwner(id, [&] {
            call();
            waker->waiter().noteRan();
        });
    });
    return waiter->wait();
}

}  // namespace QB
