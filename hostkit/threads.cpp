#include "hostkit/threads.h"

#include <QApplication>
#include <QMessageBox>
#include <QPalette>
#include <QPointer>
#include <QThread>
#include <atomic>
#include <chrono>
#include <stdexcept>

#include "hostkit/connection_pool.h"
#include "hostkit/main_thread_queue.h"
#include "hostkit/quoting.h"
#include "hostkit/worker_pool.h"
#include "model/callbacks.h"

namespace QB::HostKit {
namespace {

constexpr std::chrono::seconds endLimit{3};
constexpr std::chrono::milliseconds endStep{5};

/// What workers see of the theme; the main thread keeps it up to date.
std::atomic<bool> isDark{false};
std::atomic<bool> isPaletteFollowed{true};

/// Main thread only.
std::function<void(const std::string&)>& errorHandler() {
    static std::function<void(const std::string&)> handler;
    return handler;
}

bool isMainThread() {
    return QCoreApplication::instance() &&
           QCoreApplication::instance()->thread() == QThread::currentThread();
}

bool isPaletteDark() {
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance())) return false;
    const QPalette palette = QGuiApplication::palette();
    return palette.color(QPalette::WindowText).lightness() >
           palette.color(QPalette::Window).lightness();
}

bool isDarkTheme() {
    if (isPaletteFollowed.load() && isMainThread()) isDark.store(isPaletteDark());
    return isDark.load();
}

/// One box for a run of errors: a box for each would bury the window.
void showInMessageBox(const std::string& text) {
    static QPointer<QMessageBox> openBox;
    const QString message = QString::fromStdString(text);
    if (!openBox) {
        openBox = new QMessageBox(QMessageBox::Warning, QCoreApplication::applicationName(),
                                  message, QMessageBox::Close, QApplication::activeWindow());
        openBox->setAttribute(Qt::WA_DeleteOnClose);
        openBox->setTextFormat(Qt::PlainText);
        openBox->setModal(false);
    } else if (!openBox->text().contains(message)) {
        openBox->setText(openBox->text() + QLatin1Char('\n') + message);
    }
    openBox->show();
    openBox->raise();
}

void showOnMainThread(const std::string& text) {
    if (errorHandler()) return errorHandler()(text);
    if (qobject_cast<QApplication*>(QCoreApplication::instance())) return showInMessageBox(text);
    qWarning("%s", text.c_str());
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

void installCallbacks() {
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
    isDarkTheme();
    Callback::runOperationOnMainThread = postToMainThread;
    Callback::runOperationOnDispatchedThread = postToWorker;
    Callback::isDarkTheme = isDarkTheme;
    Callback::showError = [](std::string text) {
        reportError(text);
    };
    Callback::formatIdentifier = formatIdentifier;
}

void setDarkTheme(bool isDarkNow) {
    isPaletteFollowed.store(false);
    isDark.store(isDarkNow);
}

void followPaletteTheme() {
    isPaletteFollowed.store(true);
    isDarkTheme();
}

void setErrorHandler(std::function<void(const std::string& text)> handler) {
    errorHandler() = std::move(handler);
}

void reportError(const std::string& text) {
    const bool isServed = MainThreadQueue::instance().post([text] { showOnMainThread(text); });
    if (!isServed) qWarning("%s", text.c_str());
}

void postToMainThread(std::function<void()> function) {
    MainThreadQueue::instance().post(std::move(function));
}

void postToWorker(std::function<void()> function) {
    WorkerPool::instance().post(std::move(function));
}

}  // namespace QB::HostKit
