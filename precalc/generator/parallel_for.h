// Splits 0 .. count - 1 into slices handed out to `threads` threads as they become free.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

#include "core/thread_start.h"

namespace moremate {

// fn(begin, end, thread) for each slice; the first exception of any thread is thrown again.
template <typename Fn>
void ParallelFor(uint64_t count, unsigned threads, Fn&& fn, uint64_t slice = 4096) {
    std::atomic<uint64_t> next{0};
    std::exception_ptr failure;
    std::mutex failureLock;
    const auto work = [&](unsigned thread) {
        try {
            for (uint64_t begin = next.fetch_add(slice); begin < count; begin = next.fetch_add(slice))
                fn(begin, std::min(count, begin + slice), thread);
        } catch (...) {
            std::lock_guard lock(failureLock);
            if (!failure) failure = std::current_exception();
            next = count;
        }
    };
    std::vector<std::thread> pool;
    for (unsigned t = 1; t < threads; ++t) pool.push_back(StartThread(work, t));
    work(0);
    for (std::thread& t : pool) t.join();
    if (failure) std::rethrow_exception(failure);
}

}  // namespace moremate
