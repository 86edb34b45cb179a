// The register lock: a reader-writer lock whose exclusive side a thread may take again while it
// holds it (owner thread id plus recursion count). A thread holding it exclusively may also take
// it shared, which then costs nothing. Upgrading shared to exclusive is not supported.
//
// Insertions and lookups take it shared on every call, so the shared side never writes a cache
// line that other threads read: each reader counts itself in a slot of its own (one cache line
// per slot), and only a writer looks at all slots.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <thread>

namespace moremate {

// Tells the processor that the caller is spinning.
inline void CpuRelax() {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#endif
}

class CRegisterLock {
  public:
    // Lower-case names, so that std::unique_lock and std::shared_lock can hold it.
    void lock();
    void unlock();
    void lock_shared();
    void unlock_shared();

  private:
    static constexpr int kSlots = 16;
    struct alignas(64) TSlot {
        std::atomic<uint32_t> nReaders{0};
    };

    bool HeldExclusivelyByMe() const {
        return m_owner.load(std::memory_order_relaxed) == std::this_thread::get_id();
    }
    static TSlot& MySlot(TSlot* slots);

    TSlot m_slots[kSlots];
    alignas(64) std::atomic<bool> m_bWriter{false};
    std::atomic<std::thread::id> m_owner{};
    uint32_t m_nRecursion = 0;
    std::mutex m_writers;
};

}  // namespace moremate
