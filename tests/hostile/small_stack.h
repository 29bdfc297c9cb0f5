#pragma once

#include <pthread.h>

#include <cstddef>
#include <exception>
#include <functional>
#include <stdexcept>

namespace QB::Test {

/// The stack of the smallest thread that a host may lend.
constexpr std::size_t smallStackBytes = 512 * 1024;

/// Runs @p work on a thread with a small stack and waits for it. What it throws comes out here.
inline void onSmallStack(const std::function<void()>& work) {
    struct Job {
        const std::function<void()>& work;
        std::exception_ptr thrown;
    } job{work, nullptr};
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, smallStackBytes);
    pthread_t thread{};
    const auto run = [](void* argument) -> void* {
        Job& its = *static_cast<Job*>(argument);
        try {
            its.work();
        } catch (...) {
            its.thrown = std::current_exception();
        }
        return nullptr;
    };
    const int failure = pthread_create(&thread, &attributes, run, &job);
    pthread_attr_destroy(&attributes);
    if (failure != 0) throw std::runtime_error("no thread with a small stack");
    pthread_join(thread, nullptr);
    if (job.thrown) std::rethrow_exception(job.thrown);
}

}  // namespace QB::Test
