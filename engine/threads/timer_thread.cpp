#include "timer_thread.h"

namespace moremate {

CTimerThread::CTimerThread(std::chrono::milliseconds period, FOnTick onTick)
    : m_period(period), m_onTick(std::move(onTick)), m_thread([this] { Run(); }) {}

CTimerThread::~CTimerThread() {
    Stop();
}

void CTimerThread::Stop() {
    {
        std::lock_guard lock(m_mutex);
        m_bStopped = true;
    }
    m_cv.notify_all();
    if (m_thread.joinable()) m_thread.join();
}

void CTimerThread::Run() {
    auto next = std::chrono::steady_clock::now() + m_period;
    std::unique_lock lock(m_mutex);
    while (!m_cv.wait_until(lock, next, [this] { return m_bStopped; })) {
        lock.unlock();
        if (!m_onTick()) return;
        next += m_period;
        lock.lock();
    }
}

std::optional<CTimerThread> Deadline(std::chrono::milliseconds after, std::atomic<bool>& flag) {
    if (after.count() <= 0) return std::nullopt;
    return std::optional<CTimerThread>(std::in_place, after, [&flag] {
        flag = true;
        return false;
    });
}

}  // namespace moremate
