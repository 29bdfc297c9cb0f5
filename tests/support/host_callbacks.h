#pragma once

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

#include "model/callbacks.h"

namespace QB::Test {

/// Sets the five host callbacks for the life of the object and restores the earlier ones.
///
/// Main-thread work runs at once when posted on the thread that made the fixture, and otherwise
/// waits until runPending() is called there. Dispatched work runs on a thread of its own, which
/// the destructor joins. Names are quoted as the family usually does, without exceptions.
class HostCallbacks {
public:
    HostCallbacks() {
        current() = this;
        Callback::runOperationOnMainThread = [](std::function<void()> f) {
            current()->onMain(f);
        };
        Callback::runOperationOnDispatchedThread = [](std::function<void()> f) {
            current()->dispatch(std::move(f));
        };
        Callback::isDarkTheme = [] {
            return current()->isDark;
        };
        Callback::showError = [](std::string text) {
            current()->errors.push_back(text);
        };
        Callback::formatIdentifier = quoteAlways;
    }

    ~HostCallbacks() {
        finishWorkers();  // some may wait for the main thread
        std::tie(Callback::runOperationOnMainThread, Callback::runOperationOnDispatchedThread,
                 Callback::isDarkTheme, Callback::showError, Callback::formatIdentifier) =
            m_earlier;
        current() = m_earlierFixture;
    }

    HostCallbacks(const HostCallbacks&) = delete;
    HostCallbacks& operator=(const HostCallbacks&) = delete;

    /// Runs what other threads have posted to the main thread, until nothing is left.
    void runPending() {
        for (;;) {
            std::vector<std::function<void()>> batch;
            {
                const std::lock_guard lock(m_mutex);
                batch.swap(m_pending);
            }
            if (batch.empty()) return;
            for (auto& f : batch)
                f();
        }
    }

    /// Whether a dispatched function has not returned yet.
    bool hasWorkers() const { return m_running.load() > 0; }

    /// Runs main-thread work until every dispatched function has returned.
    void finishWorkers() {
        while (hasWorkers()) {
            runPending();
            awaitNews();
        }
        runPending();
        joinWorkers();
    }

    static std::string quoteAlways(const std::string& name, DatabaseType type, int) {
        const bool isMySQL = type == DatabaseTypeMySQL || type == DatabaseTypeMariaDB;
        if (type == DatabaseTypeSQLServer) return enclosed('[', name, ']');
        const char quote = isMySQL ? '`' : '"';
        return enclosed(quote, name, quote);
    }

    bool isDark = false;
    std::vector<std::string> errors;

protected:
    /// Something has come for the main thread, which may wait for it. Any thread.
    void tellNews() {
        const std::lock_guard lock(m_mutex);
        m_hasNews = true;
        m_news.notify_one();
    }
    /// Until something has come since the last call, or nothing runs that could bring it.
    void awaitNews() {
        std::unique_lock lock(m_mutex);
        m_news.wait(lock, [this] { return m_hasNews || !hasWorkers(); });
        m_hasNews = false;
    }

private:
    /// @p name between @p open and @p close, and @p close doubled in it. Without a detour, since
    /// the benchmarks of generated text count this, too.
    static std::string enclosed(char open, const std::string& name, char close) {
        std::string all;
        all.reserve(name.size() + 2);
        all += open;
        std::size_t written = 0;
        for (std::size_t at = name.find(close); at != std::string::npos;
             at = name.find(close, at + 1)) {
            all.append(name, written, at + 1 - written) += close;
            written = at + 1;
        }
        return all.append(name, written, std::string::npos) += close;
    }

    static HostCallbacks*& current() {
        static HostCallbacks* instance = nullptr;
        return instance;
    }

    void onMain(std::function<void()>& f) {
        if (std::this_thread::get_id() == m_mainThread) return f();
        {
            const std::lock_guard lock(m_mutex);
            m_pending.push_back(std::move(f));
        }
        tellNews();
    }

    void dispatch(std::function<void()> f) {
        m_running.fetch_add(1);
        const std::lock_guard lock(m_mutex);
        m_workers.emplace_back([this, f = std::move(f)]() mutable {
            f();
            f = nullptr;  // what the closure owns goes before the work counts as done
            m_running.fetch_sub(1);
            tellNews();
        });
    }

    void joinWorkers() {
        std::vector<std::thread> workers;
        {
            const std::lock_guard lock(m_mutex);
            workers.swap(m_workers);
        }
        for (std::thread& worker : workers)
            worker.join();
    }

    const std::thread::id m_mainThread = std::this_thread::get_id();
    std::tuple<decltype(Callback::runOperationOnMainThread),
               decltype(Callback::runOperationOnDispatchedThread), decltype(Callback::isDarkTheme),
               decltype(Callback::showError), decltype(Callback::formatIdentifier)>
        m_earlier = {Callback::runOperationOnMainThread, Callback::runOperationOnDispatchedThread,
                     Callback::isDarkTheme, Callback::showError, Callback::formatIdentifier};
    HostCallbacks* m_earlierFixture = current();
    std::mutex m_mutex;
    std::vector<std::function<void()>> m_pending;  // guarded by m_mutex
    std::vector<std::thread> m_workers;            // guarded by m_mutex
    std::atomic<int> m_running{0};
    std::condition_variable m_news;
    bool m_hasNews = false;  // guarded by m_mutex
};

}  // namespace QB::Test
