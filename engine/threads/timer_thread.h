// CTimerThread: a pooled thread (see CPooledThread) that calls a function once a period, until the
// function returns false or the timer is stopped or destroyed. The function runs outside the lock,
// so that Stop() waits for one call at most; no call starts after Stop() returns.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>

#include "core/pooled_thread.h"

namespace moremate {

class CTimerThread {
  public:
    using FOnTick = std::function<bool()>;  // false: no more ticks
    CTimerThread(std::chrono::milliseconds period, FOnTick onTick);
    ~CTimerThread();
    CTimerThread(const CTimerThread&) = delete;
    CTimerThread& operator=(const CTimerThread&) = delete;

    void Stop();

  private:
    void Run();

    std::chrono::milliseconds m_period;
    FOnTick m_onTick;
    std::mutex m_mutex;
    std::condition_variable m_cv;
    bool m_bStopped = false;
    CPooledThread m_thread;  // last: started once the rest is ready
};

// A timer that raises `flag` once `after` has passed, unless destroyed first; none for a zero or
// negative time.
std::optional<CTimerThread> Deadline(std::chrono::milliseconds after, std::atomic<bool>& flag);

}  // namespace moremate
