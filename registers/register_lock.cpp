#include "register_lock.h"

namespace moremate {

namespace {

std::atomic<unsigned> g_nNextLockSlot{0};

}  // namespace

CRegisterLock::TSlot& CRegisterLock::MySlot(TSlot* slots) {
    thread_local const unsigned slot = g_nNextLockSlot.fetch_add(1, std::memory_order_relaxed) % kSlots;
    return slots[slot];
}

void CRegisterLock::lock_shared() {
    if (HeldExclusivelyByMe()) return;
    std::atomic<uint32_t>& readers = MySlot(m_slots).nReaders;
    for (;;) {
        // Announce first, then look for a writer; the writer does the opposite (both seq_cst),
        // so at least one of the two sees the other.
        readers.fetch_add(1, std::memory_order_seq_cst);
        if (!m_bWriter.load(std::memory_order_seq_cst)) return;
        readers.fetch_sub(1, std::memory_order_release);
        m_bWriter.wait(true, std::memory_order_acquire);
    }
}

void CRegisterLock::unlock_shared() {
    if (HeldExclusivelyByMe()) return;
    MySlot(m_slots).nReaders.fetch_sub(1, std::memory_order_release);
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
