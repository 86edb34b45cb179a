// A count that every thread of a search adds to all the time and checks against a limit: each
// thread adds to a share of its own (one cache line per register-lock slot) and moves it to the
// total once it holds kBatch, so that the total's cache line is written seldom and stays in the
// caches of the threads that read it. The total alone is short of the count by less than
// kMaxUnseen (while no more threads than slots add), so a check against a limit reads the total
// and asks for the exact count only when the total comes that close.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>

#include "register_lock.h"

namespace moremate {

class CSharedCount {
  public:
    static constexpr uint32_t kBatch = 64;
    static constexpr uint32_t kMaxUnseen = kRegisterLockSlots * kBatch;

    // Threads that share a slot share its share too: every step on it is atomic.
    void Add(uint32_t n) {
        std::atomic<uint32_t>& share = m_shares[MyLockSlot()].n;
        if (share.fetch_add(n, std::memory_order_relaxed) + n < kBatch) return;
        m_nTotal.fetch_add(share.exchange(0, std::memory_order_relaxed), std::memory_order_relaxed);
    }
    void Subtract(uint32_t n) { m_nTotal.fetch_sub(n, std::memory_order_relaxed); }
    // The total and every share.
    uint32_t Load() const {
        int64_t n = m_nTotal.load(std::memory_order_relaxed);
        for (const TShare& share : m_shares) n += share.n.load(std::memory_order_relaxed);
        return Clamped(n);
    }
    // The total without the shares: at most the count, short of it by less than kMaxUnseen.
    uint32_t LoadAtLeast() const { return Clamped(m_nTotal.load(std::memory_order_relaxed)); }
    // Sets the count while no thread adds to it; returns the count before.
    uint32_t Exchange(uint32_t n) {
        const uint32_t nBefore = Load();
        for (TShare& share : m_shares) share.n.store(0, std::memory_order_relaxed);
        m_nTotal.store(n, std::memory_order_relaxed);
        return nBefore;
    }

  private:
    struct alignas(64) TShare {
        std::atomic<uint32_t> n{0};
    };
    // A removal may take from the total what a share still holds.
    static uint32_t Clamped(int64_t n) { return static_cast<uint32_t>(std::max<int64_t>(n, 0)); }

    TShare m_shares[kRegisterLockSlots];
    alignas(64) std::atomic<int64_t> m_nTotal{0};
};

}  // namespace moremate
