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

// The calling thread's slot among kRegisterLockSlots, given out in turn at its first use: its place
// in every register lock and in the registers' shared counts. Constant-initialised, so that
// reading it needs no guard of a thread-local initialisation.
inline constexpr unsigned kNoLockSlot = ~0u;
inline constexpr unsigned kRegisterLockSlots = 16;
extern constinit thread_local unsigned t_nLockSlot;
void TakeLockSlot();
inline unsigned MyLockSlot() {
    if (t_nLockSlot == kNoLockSlot) TakeLockSlot();
    return t_nLockSlot;
}

class CRegisterLock {
  public:
    // Lower-case names, so that std::unique_lock and std::shared_lock can hold it.
    void lock();
    void unlock();
    // Inline, as every look-up and insertion takes it: announce first, then look for a writer;
    // the writer does the opposite (both seq_cst), so at least one of the two sees the other.
    void lock_shared() {
        std::atomic<uint32_t>& readers = MySlot();
        readers.fetch_add(1, std::memory_order_seq_cst);
        if (m_bWriter.load(std::memory_order_seq_cst)) WaitForWriter(readers);
    }
    // The thread that holds the lock exclusively, and only that thread, took it shared without
    // being counted; who holds it is asked only while a writer is there.
    void unlock_shared() {
        if (m_bWriter.load(std::memory_order_relaxed) && HeldExclusivelyByMe()) return;
        MySlot().fetch_sub(1, std::memory_order_release);
    }

  private:
    struct alignas(64) TSlot {
        std::atomic<uint32_t> nReaders{0};
    };

    bool HeldExclusivelyByMe() const {
        return m_owner.load(std::memory_order_relaxed) == std::this_thread::get_id();
    }
    std::atomic<uint32_t>& MySlot() { return m_slots[MyLockSlot()].nReaders; }
    // lock_shared's way when it met a writer: `readers` counts the caller.
    void WaitForWriter(std::atomic<uint32_t>& readers);

    TSlot m_slots[kRegisterLockSlots];
    alignas(64) std::atomic<bool> m_bWriter{false};
    std::atomic<std::thread::id> m_owner{};
    uint32_t m_nRecursion = 0;
    std::mutex m_writers;
};

}  // namespace moremate
