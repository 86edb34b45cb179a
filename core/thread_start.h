// StartThread: every thread the program starts goes through it, so that a per-thread setup the
// process registers once (the crash handler's signal stack) is made at the thread's start and
// undone at its end, in this thread.
#pragma once

#include <cstddef>
#include <exception>
#include <functional>
#include <thread>
#include <utility>
#include <vector>

#include "pooled_thread.h"

namespace moremate {

struct TThreadHooks {
    void* (*onStart)();  // the setup made for the calling thread, handed to onEnd
    void (*onEnd)(void*);
};

// `hooks` must live until the program ends; set them before threads start. nullptr: none.
void SetThreadHooks(const TThreadHooks* hooks);

// Runs the registered hooks around the life of one object on the thread's stack.
class CThreadHooksScope {
  public:
    CThreadHooksScope();
    ~CThreadHooksScope();
    CThreadHooksScope(const CThreadHooksScope&) = delete;
    CThreadHooksScope& operator=(const CThreadHooksScope&) = delete;

  private:
    const TThreadHooks* m_pHooks;
    void* m_pSetup = nullptr;
};

// As std::thread(fn, args...), with the hooks around fn.
template <class F, class... Args>
std::thread StartThread(F&& fn, Args&&... args) {
    return std::thread([fn = std::forward<F>(fn), ... args = std::forward<Args>(args)]() mutable {
        const CThreadHooksScope scope;
        std::invoke(std::move(fn), std::move(args)...);
    });
}

// Runs work(0) on the calling thread and work(1) ... work(n - 1) on pooled threads (see
// CPooledThread), and once all have ended rethrows the first exception any of them threw.
template <class FWork>
void RunOnThreads(size_t n, FWork&& work) {
    std::vector<std::exception_ptr> failures(n);
    auto guarded = [&work, &failures](size_t i) {
        try {
            work(i);
        } catch (...) {
            failures[i] = std::current_exception();
        }
    };
    std::vector<CPooledThread> threads;
    threads.reserve(n);
    for (size_t i = 1; i < n; ++i) threads.emplace_back([&guarded, i] { guarded(i); });
    if (n > 0) guarded(0);
    for (CPooledThread& thread : threads) thread.join();
    for (const std::exception_ptr& failure : failures) {
        if (failure) std::rethrow_exception(failure);
    }
}

}  // namespace moremate
