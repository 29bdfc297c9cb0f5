#include "apps/joinery-sql/script/background_work.h"

#include <atomic>
#include <functional>
#include <memory>
#include <utility>

#include "hostkit/main_thread_queue.h"
#include "hostkit/thread_callbacks.h"
#include "hostkit/threads.h"
#include "model/callbacks.h"

namespace QB::Cli {
namespace {

std::atomic<long> startedCount{0};
std::atomic<long> runningCount{0};
std::string reportedErrors;  // main thread only

/// One dispatched function. It counts as running until it was destroyed, run or unrun, with all
/// that it owns.
class Work {
public:
    explicit Work(std::function<void()> function) : m_function(std::move(function)) {
        ++startedCount;
        ++runningCount;
    }
    ~Work() {
        m_function = nullptr;
        --runningCount;
        HostKit::MainThreadQueue::instance().wake();
    }
    Work(const Work&) = delete;
    Work& operator=(const Work&) = delete;

    void run() const { m_function(); }

private:
    std::function<void()> m_function;
};

void dispatch(std::function<void()> function) {
    HostKit::postToWorker([work = std::make_shared<Work>(std::move(function))] { work->run(); });
}

}  // namespace

void startBackgroundWork() {
    HostKit::installThreadCallbacks();
    HostKit::setErrorHandler([](const std::string& text) {
        reportedErrors += (reportedErrors.empty() ? "" : "\n") + text;
    });
    Callback::runOperationOnDispatchedThread = dispatch;
    Callback::isDarkTheme = [] {
        return false;
    };
}

void settle() {
    for (;;) {
        // In this order: what a worker posts is there before it ends, and what is posted may start
        // more work, which may be over again by the time that we look.
        const long started = startedCount.load();
        const bool isQuiet = runningCount.load() == 0;
        HostKit::MainThreadQueue& queue = HostKit::MainThreadQueue::instance();
        queue.runWaiting();
        if (isQuiet && started == startedCount.load()) return;
        queue.waitForFunction([] { return runningCount.load() == 0; });
    }
}

std::string takeReportedErrors() {
    return std::exchange(reportedErrors, std::string());
}

}  // namespace QB::Cli
