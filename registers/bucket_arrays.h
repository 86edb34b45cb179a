// The bucket arrays of the registers' hash tables. A run's registers come and go with each problem
// of a collection while their size stays the same: an array given back, its words all 0 again,
// serves the next table of its size, so the system neither maps nor clears it again, and nobody
// writes its zeros again.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace moremate {

// An array of `nBuckets` words, all 0. Throws std::bad_alloc when the system has no memory.
std::atomic<uint64_t>* TakeBucketArray(size_t nBuckets);
// Takes back an array of TakeBucketArray whose words are all 0 again; null is ignored. A few are
// kept for reuse, the oldest beyond them go back to the system.
void GiveBucketArray(std::atomic<uint64_t>* pBuckets, size_t nBuckets);
// Returns an array of TakeBucketArray to the system, whatever its words hold.
void FreeBuckets(std::atomic<uint64_t>* pBuckets, size_t nBuckets);

}  // namespace moremate
