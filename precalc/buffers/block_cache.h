// Unpacked blocks kept for reading, in stripes: block b belongs to stripe b mod kStripes, each
// with its own lock and kSlotsPerStripe slots of one block. A miss refills the stripe's least
// recently used slot. Threads reading different blocks mostly take different locks; changing the
// packed data takes them all.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <mutex>
#include <vector>

namespace moremate::RandomAccessLZWBuffer {

class CBlockCache {
  public:
    static constexpr size_t kStripes = 8;
    static constexpr size_t kSlotsPerStripe = 4;

    explicit CBlockCache(size_t nBlockBytes) : m_nBlockBytes(nBlockBytes) {}

    std::mutex& MutexOf(uint64_t nBlock) { return m_stripes[nBlock % kStripes].mutex; }
    // Every stripe's lock, taken in order.
    std::array<std::unique_lock<std::mutex>, kStripes> LockAll();

    // The unpacked bytes of `nBlock`, its stripe locked by the caller; on a miss `unpack(pSlot)`
    // fills a slot first. When it throws, the slot is left empty.
    template <class FUnpack>
    uint8_t* SlotFor(uint64_t nBlock, FUnpack&& unpack) {
        TStripe& stripe = m_stripes[nBlock % kStripes];
        TSlot* pVictim = &stripe.slots[0];
        for (TSlot& slot : stripe.slots) {
            if (slot.nBlock == nBlock) {
                slot.nLastUse = ++stripe.nClock;
                return slot.bytes.data();
            }
            if (slot.nLastUse < pVictim->nLastUse) pVictim = &slot;
        }
        pVictim->nBlock = kNoBlock;
        pVictim->bytes.resize(m_nBlockBytes);
        unpack(pVictim->bytes.data());
        pVictim->nBlock = nBlock;
        pVictim->nLastUse = ++stripe.nClock;
        return pVictim->bytes.data();
    }

  private:
    static constexpr uint64_t kNoBlock = std::numeric_limits<uint64_t>::max();

    struct TSlot {
        uint64_t nBlock = kNoBlock;
        uint64_t nLastUse = 0;
        std::vector<uint8_t> bytes;  // allocated at first use
    };
    struct alignas(64) TStripe {
        std::mutex mutex;
        uint64_t nClock = 0;
        std::array<TSlot, kSlotsPerStripe> slots;
    };

    const size_t m_nBlockBytes;
    std::array<TStripe, kStripes> m_stripes;
};

}  // namespace moremate::RandomAccessLZWBuffer
