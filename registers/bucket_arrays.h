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
// For an array of TakeBucketArray at the program's end: a small one goes back to the heap, a
// mapped one stays mapped for the system to take with the process (unmapping it waits for any
// thread that is faulting in pages of the process at the time, such as the chunk reserve's helper).
void LeaveBuckets(std::atomic<uint64_t>* pBuckets, size_t nBuckets);

}  // namespace moremate
