#include "register_lock.h"

namespace moremate {

namespace {

std::atomic<unsigned> g_nNextLockSlot{0};

}  // namespace

constinit thread_local unsigned t_nLockSlot = kNoLockSlot;

void TakeLockSlot() {
    t_nLockSlot = g_nNextLockSlot.fetch_add(1, std::memory_order_relaxed) % kRegisterLockSlots;
}

void CRegisterLock::WaitForWriter(std::atomic<uint32_t>& readers) {
    do {
        readers.fetch_sub(1, std::memory_order_release);
        if (HeldExclusivelyByMe()) return;
        m_bWriter.wait(true, std::memory_order_acquire);
        readers.fetch_add(1, std::memory_order_seq_cst);
    } while (m_bWriter.load(std::memory_order_seq_cst));
}

void CRegisterLock::lock() {
    if (HeldExclusivelyByMe()) {
        ++m_nRecursion;
        return;
    }
    m_writers.lock();
    m_bWriter.store(true, std::memory_order_seq_cst);
    for (TSlot& slot : m_slots) {
        while (slot.nReaders.load(std::memory_order_seq_cst) != 0) std::this_thread::yield();
    }
    m_owner.store(std::this_thread::get_id(), std::memory_order_relaxed);
    m_nRecursion = 1;
}

void CRegisterLock::unlock() {
    if (--m_nRecursion != 0) return;
    m_owner.store(std::thread::id{}, std::memory_order_relaxed);
    m_bWriter.store(false, std::memory_order_release);
    m_bWriter.notify_all();
    m_writers.unlock();
}

}  // namespace moremate
