#include "hostkit/threads.h"

#include <QCoreApplication>
#include <QSqlDatabase>
#include <QThread>
#include <chrono>
#include <stdexcept>

#include "hostkit/connection_pool.h"
#include "hostkit/main_thread_queue.h"
#include "hostkit/quoting.h"
#include "hostkit/thread_callbacks.h"
#include "hostkit/worker_pool.h"
#include "model/callbacks.h"

namespace QB::HostKit {
namespace {

constexpr std::chrono::seconds endLimit{3};
constexpr std::chrono::milliseconds endStep{5};

void warn(const std::string& text) {
    qWarning("%s", text.c_str());
}

/// Main thread only, as what follows.
void (*defaultErrorHandler)(const std::string&) = warn;

std::function<void(const std::string&)>& errorHandler() {
    static std::function<void(const std::string&)> handler;
    return handler;
}

void showOnMainThread(const std::string& text) {
    if (errorHandler()) return errorHandler()(text);
    defaultErrorHandler(text);
}

/// A worker that waits for the main thread is served until it has come to its end; what its
/// functions wanted of the host's objects finds them gone.
void serveWorkersToTheirEnd() {
    const auto deadline = std::chrono::steady_clock::now() + endLimit;
    WorkerPool::instance().shutDown();
    do {
        stopAllStatements();
        MainThreadQueue::instance().runWaiting();
    } while (!WorkerPool::instance().waitForEnd(endStep) &&
             std::chrono::steady_clock::now() < deadline);
    MainThreadQueue::instance().runWaiting();
}

/// Called by Qt at the beginning of the application object's destruction.
void endWithApplication() {
    serveWorkersToTheirEnd();
    MainThreadQueue::instance().detach();
    closeAllThreadConnections();
}

}  // namespace

bool isMainThread() {
    return QCoreApplication::instance() &&
           QCoreApplication::instance()->thread() == QThread::currentThread();
}

void installThreadCallbacks() {
    if (!isMainThread()) throw std::logic_error("installCallbacks: needs the application's thread");
    if (MainThreadQueue::instance().attach()) {
        WorkerPool::instance().setHousekeeping(closeDeadThreadConnections,
                                               closeAllThreadConnections);
        WorkerPool::instance().start();
        // QtSql takes its drivers away in an end routine of its own, which it adds here at the
        // latest. The last added runs first, and workers must have ended before the drivers go.
        QSqlDatabase::drivers();
        qAddPostRoutine(endWithApplication);
    }
    Callback::runOperationOnMainThread = postToMainThread;
    Callback::runOperationOnDispatchedThread = postToWorker;
    Callback::showError = [](std::string text) {
        reportError(text);
    };
    Callback::formatIdentifier = formatIdentifier;
}

void setDefaultErrorHandler(void (*show)(const std::string& text)) {
    defaultErrorHandler = show;
}

void setErrorHandler(std::function<void(const std::string& text)> handler) {
    errorHandler() = std::move(handler);
}

void reportError(const std::string& text) {
    const bool isServed = MainThreadQueue::instance().post([text] { showOnMainThread(text); });
    if (!isServed) warn(text);
}

void postToMainThread(std::function<void()> function) {
    MainThreadQueue::instance().post(std::move(function));
}

void postToWorker(std::function<void()> function) {
    WorkerPool::instance().post(std::move(function));
}

}  // namespace QB::HostKit
