// How large a temporary register a memory quota allows.
//
// At capacity a bucket should hold 4 to 8 entries on average: a node of 8 entries (552 bytes plus
// the allocator's header) then serves most buckets, few buckets need the sorted form, and a
// lookup scans a handful of keys. That costs at most about 150 bytes per entry including the
// bucket words; 160 bytes are reserved per entry to leave room for the sorted arrays.
#pragma once

#include <cstddef>
#include <cstdint>

namespace moremate {

inline constexpr uint64_t kRegisterBytesPerEntry = 160;
inline constexpr uint32_t kMinRegisterCapacity = 16'384;

struct TRegisterSize {
    uint32_t nCapacity;  // element count limit
    size_t nBuckets;     // a power of two: capacity / 4 rounded down
};

// For a quota in megabytes, such as the one derived from MaxMemRatioForTempReg.
TRegisterSize RegisterSizeForMemory(uint64_t nMegabytes);

// For a capacity set directly.
TRegisterSize RegisterSizeForCapacity(uint32_t nCapacity);

}  // namespace moremate
