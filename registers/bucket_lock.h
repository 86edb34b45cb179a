// A bucket word packs three things: the low 48 bits are a pointer, byte 6 is the bucket's spin
// lock, and bit 0 of byte 7 says which form the pointer has (see register_combined_map.h).
#pragma once

#include <atomic>
#include <cstdint>

#include "register_lock.h"

namespace moremate {

inline constexpr uint64_t kBucketPointerMask = (uint64_t{1} << 48) - 1;
inline constexpr uint64_t kBucketLockBit = uint64_t{1} << 48;     // byte 6: 1 while held
inline constexpr uint64_t kBucketSortedFlag = uint64_t{1} << 56;  // byte 7, bit 0: sorted form

// The stored 48 bits sign-extended, as the processor's canonical addresses are.
inline void* BucketPointer(uint64_t word) {
    return reinterpret_cast<void*>(static_cast<int64_t>(word << 16) >> 16);
}
inline bool IsSortedBucket(uint64_t word) {
    return (word & kBucketSortedFlag) != 0;
}

// Holds one bucket's spin lock for its lifetime and gives access to the word's contents.
// While the lock is held nobody else changes the word, so the holder keeps its own copy and
// releases the lock by storing that copy, with any new pointer or form, in one write.
class CBucketLock {
  public:
    explicit CBucketLock(std::atomic<uint64_t>& word) : m_word(word) {
        // Test and test-and-set: waiters spin on a plain load, not on the locked instruction.
        for (;;) {
            const uint64_t value = m_word.fetch_or(kBucketLockBit, std::memory_order_acquire);
            if (!(value & kBucketLockBit)) {
                m_nValue = value;
                return;
            }
            while (m_word.load(std::memory_order_relaxed) & kBucketLockBit) CpuRelax();
        }
    }
    ~CBucketLock() { m_word.store(m_nValue, std::memory_order_release); }
    CBucketLock(const CBucketLock&) = delete;
    CBucketLock& operator=(const CBucketLock&) = delete;

    void* Pointer() const { return BucketPointer(m_nValue); }
    bool IsSorted() const { return IsSortedBucket(m_nValue); }
    void Set(void* pointer, bool bSorted) {
        m_nValue =
            (reinterpret_cast<uint64_t>(pointer) & kBucketPointerMask) | (bSorted ? kBucketSortedFlag : 0);
    }

  private:
    std::atomic<uint64_t>& m_word;
    uint64_t m_nValue;  // the word without the lock byte
};

}  // namespace moremate
