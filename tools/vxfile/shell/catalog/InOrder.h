#pragma once

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

#include "tools/vxfile/system/Interrupt.h"

namespace vxfile {

/// Calls `work(i)` for each i in [0, count) on `threads` threads, and `take(i, result)` on the calling thread, in
/// ascending order. At most 64 results per thread wait. Rethrows the first exception of either after all threads have
/// ended. Throws `CInterruption` after Ctrl-C.
template <class Work, class Take>
void ForEachInOrder(std::size_t count, std::size_t threads, Work work, Take take) {
    using CResult = decltype(work(std::size_t{0}));
    std::vector<std::optional<CResult>> results(64 * threads);
    std::mutex mutex;
    std::condition_variable changed;
    std::size_t next = 0;
    std::size_t taken = 0;
    bool isEnded = false;
    std::exception_ptr failure;

    const auto run = [&] {
        std::unique_lock lock(mutex);
        while (true) {
            changed.wait(lock, [&] { return isEnded || next >= count || next < taken + results.size(); });
            if (isEnded || next >= count) return;
            const std::size_t i = next++;
            lock.unlock();
            std::optional<CResult> result;
            std::exception_ptr thrown;
            try {
                result = work(i);
            } catch (...) {
                thrown = std::current_exception();
            }
            lock.lock();
            results[i % results.size()] = std::move(result);
            if (thrown && !failure) failure = thrown;
            changed.notify_all();
        }
    };

    struct CThreads {
        std::vector<std::jthread> all;
        std::mutex& mutex;
        std::condition_variable& changed;
        bool& isEnded;
        ~CThreads() {
            const std::lock_guard lock(mutex);
            isEnded = true;
            changed.notify_all();
        }
    };
    CThreads running{{}, mutex, changed, isEnded};
    for (std::size_t i = 0; i < std::min(threads, count); ++i)
        running.all.emplace_back(run);

    for (std::size_t i = 0; i < count; ++i) {
        std::unique_lock lock(mutex);
        auto& place = results[i % results.size()];
        while (!changed.wait_for(lock, std::chrono::milliseconds(200), [&] { return place || failure; }))
            CheckInterrupt();
        if (failure) std::rethrow_exception(failure);
        CResult result = std::move(*place);
        place.reset();
        taken = i + 1;
        changed.notify_all();
        lock.unlock();
        take(i, std::move(result));
    }
}

}  // namespace vxfile
