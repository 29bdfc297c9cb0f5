#include "hostkit/threads.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QThread>
#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

#include "hostkit/quoting.h"
#include "model/callbacks.h"

using namespace QB;
using namespace QB::HostKit;

namespace {

/// A number that threads raise and wait for.
class Counter {
public:
    void raise() {
        const std::lock_guard lock(m_mutex);
        ++m_value;
        m_raised.notify_all();
    }
    void waitFor(int value) {
        std::unique_lock lock(m_mutex);
        m_raised.wait(lock, [this, value] { return m_value >= value; });
    }
    int value() {
        const std::lock_guard lock(m_mutex);
        return m_value;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_raised;
    int m_value = 0;
};

/// Tells when the last copy of a function that holds it has gone, run or not.
struct Tracked {
    explicit Tracked(Counter& counter) : gone(counter) {}
    ~Tracked() { gone.raise(); }
    Tracked(const Tracked&) = delete;
    Tracked& operator=(const Tracked&) = delete;
    Counter& gone;
};

class Threads : public ::testing::Test {
protected:
    void SetUp() override {
        application = std::make_unique<QCoreApplication>(m_count, m_names);
        installCallbacks();
    }
    void TearDown() override {
        setErrorHandler(nullptr);
        application.reset();
    }

    /// Serves the main thread's queue until @p isDone.
    template <typename Condition>
    void serveUntil(Condition isDone) {
        while (!isDone())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    std::unique_ptr<QCoreApplication> application;

private:
    int m_count = 1;
    char m_name[5] = "test";
    char* m_names[2] = {m_name, nullptr};
};

/// What a worker of the library does: posts to the main thread, and waits until it has run.
void callOnMainAndWait(std::function<void()> function) {
    auto done = std::make_shared<Counter>();
    Callback::runOperationOnMainThread([function, done] {
        function();
        done->raise();
    });
    done->waitFor(1);
}

}  // namespace

TEST_F(Threads, FunctionsOfEachThreadRunOnTheMainThreadInOrder) {
    constexpr int threadCount = 8;
    constexpr int perThread = 500;
    std::vector<std::vector<int>> seen(threadCount);  // main thread only
    int total = 0;
    for (int t = 0; t < threadCount; ++t)
        Callback::runOperationOnDispatchedThread([t, &seen, &total] {
            for (int i = 0; i < perThread; ++i)
                Callback::runOperationOnMainThread([t, i, &seen, &total] {
                    seen[static_cast<std::size_t>(t)].push_back(i);
                    ++total;
                });
        });
    serveUntil([&] { return total == threadCount * perThread; });
    for (const auto& order : seen)
        for (int i = 0; i < perThread; ++i)
            ASSERT_EQ(order[static_cast<std::size_t>(i)], i);
}

TEST_F(Threads, OnTheMainThreadAFunctionRunsAtOnceUnlessOthersWait) {
    std::vector<int> order;
    Callback::runOperationOnMainThread([&order] { order.push_back(1); });
    EXPECT_EQ(order, std::vector<int>({1}));
    std::thread([&order] {
        Callback::runOperationOnMainThread([&order] {
            order.push_back(2);
            // The third already waits, so this one comes after it.
            Callback::runOperationOnMainThread([&order] { order.push_back(5); });
        });
        Callback::runOperationOnMainThread([&order] { order.push_back(3); });
    }).join();
    Callback::runOperationOnMainThread([&order] { order.push_back(4); });
    EXPECT_EQ(order, std::vector<int>({1}));
    serveUntil([&] { return order.size() == 5; });
    EXPECT_EQ(order, std::vector<int>({1, 2, 3, 4, 5}));
}

TEST_F(Threads, AnEventLoopInsideAFunctionServesTheNextOnes) {
    bool isSecondRun = false;
    bool isFirstOver = false;
    std::thread([&] {
        postToMainThread([&] {
            serveUntil([&] { return isSecondRun; });
            isFirstOver = true;
        });
        postToMainThread([&] { isSecondRun = true; });
    }).join();
    serveUntil([&] { return isFirstOver; });
}

TEST_F(Threads, WorkersThatAllBlockDoNotKeepTheNextFromRunning) {
    constexpr int blocked = 40;
    Counter started;
    Counter release;
    Counter ended;
    for (int i = 0; i < blocked; ++i)
        Callback::runOperationOnDispatchedThread([&] {
            started.raise();
            release.waitFor(1);
            ended.raise();
        });
    started.waitFor(blocked);
    Callback::runOperationOnDispatchedThread([&] { release.raise(); });
    ended.waitFor(blocked);
}

TEST_F(Threads, WorkersAndTheMainThreadWaitForEachOtherInTurns) {
    constexpr int count = 400;
    int onMain = 0;
    Counter ended;
    for (int i = 0; i < count; ++i)
        postToWorker([&] {
            for (int turn = 0; turn < 5; ++turn)
                callOnMainAndWait([&onMain] { ++onMain; });
            callOnMainAndWait([&ended] { ended.raise(); });
        });
    serveUntil([&] { return ended.value() == count; });
    EXPECT_EQ(onMain, count * 5);
}

TEST_F(Threads, ErrorsOfAnyThreadReachTheHandlerOnTheMainThread) {
    std::vector<std::string> errors;
    const std::thread::id mainThread = std::this_thread::get_id();
    setErrorHandler([&](const std::string& text) {
        EXPECT_EQ(std::this_thread::get_id(), mainThread);
        errors.push_back(text);
    });
    Callback::showError("at once");
    EXPECT_EQ(errors.size(), 1u);
    std::thread([] { Callback::showError("queued"); }).join();
    serveUntil([&] { return errors.size() == 2; });
    postToWorker([] { throw std::runtime_error("thrown"); });
    serveUntil([&] { return errors.size() == 3; });
    postToWorker([] { throw new std::runtime_error("of the engine"); });
    serveUntil([&] { return errors.size() == 4; });
    EXPECT_EQ(errors, std::vector<std::string>({"at once", "queued", "thrown", "of the engine"}));
}

TEST_F(Threads, NamesAreQuotedAndTheThemeIsReadWhileItChanges) {
    std::atomic<bool> isOver{false};
    std::vector<std::thread> readers;
    for (int t = 0; t < 3; ++t)
        readers.emplace_back([&isOver] {
            do {
                (void)Callback::isDarkTheme();
                EXPECT_EQ(Callback::formatIdentifier("order", DatabaseTypeMySQL, 0), "`order`");
            } while (!isOver.load());
        });
    for (int i = 0; i <= 1000; ++i)
        setDarkTheme(i % 2 == 0);
    EXPECT_TRUE(Callback::isDarkTheme());
    isOver.store(true);
    for (std::thread& reader : readers)
        reader.join();
    followPaletteTheme();
    EXPECT_FALSE(Callback::isDarkTheme());
}

TEST_F(Threads, AtTheEndAWaitingWorkerIsServedAndNothingHangs) {
    Counter started;
    int onMain = 0;
    Counter gone;
    for (int i = 0; i < 20; ++i)
        postToWorker([&, tracked = std::make_shared<Tracked>(gone)] {
            started.raise();
            callOnMainAndWait([&onMain] { ++onMain; });
            callOnMainAndWait([&onMain] { ++onMain; });
        });
    started.waitFor(20);
    application.reset();
    EXPECT_EQ(onMain, 40);
    EXPECT_EQ(gone.value(), 20);
}

TEST_F(Threads, AfterTheEndFunctionsAreDestroyedUnrunUntilTheNextApplication) {
    application.reset();
    Counter gone;
    const auto refuse = [tracked = std::make_shared<Tracked>(gone)] {
        FAIL();
    };
    postToMainThread(refuse);
    postToWorker(refuse);
    std::thread([] { reportError("nobody is left to see this"); }).join();
    SetUp();
    Counter ran;
    postToWorker([&ran] { ran.raise(); });
    ran.waitFor(1);
}

TEST_F(Threads, ApplicationsComeAndGoWhileThreadsPost) {
    std::atomic<bool> isOver{false};
    std::thread poster([&isOver] {
        while (!isOver.load()) {
            postToMainThread([] {});
            postToWorker([] { postToMainThread([] {}); });
            std::this_thread::yield();
        }
    });
    for (int i = 0; i < 30; ++i) {
        application.reset();
        SetUp();
        QCoreApplication::processEvents();
    }
    isOver.store(true);
    poster.join();
}

TEST(ThreadsWithoutApplication, InstallingIsRefused) {
    EXPECT_THROW(installCallbacks(), std::logic_error);
}
