// The allocator of the register's buckets: nodes, sorted-bucket headers and sorted arrays come
// in a few fixed sizes, each served from 2 MiB chunks cut into units of that size. A freed unit
// goes back to its chunk; a chunk left without used units waits among the unused chunks of its
// size for reuse, and goes back to the system only when ReleaseUnusedChunks is called. So the
// registers of the next problem of a collection, or those refilling after an emptying, take the
// memory of the ones before without the system clearing it again (the units need no clearing:
// every block is written before it is read). What waits is at most what was in use at the peak,
// which the registers' capacity bounds. A block above the largest unit (a sorted bucket of more than
// 2,048 entries, which only a degenerate hash gives) gets a chunk of its own, rounded up to 2 MiB.
//
// Chunks are aligned to 2 MiB and start with a header, so a block finds its chunk and its size
// from its address: Free and Reallocate need no size. Each chunk is one huge page where the system
// allows it: a look-up at a random place then costs no page walk.
//
// Thread-safe: one lock per unit size, held for a few instructions per call. With thread caches,
// each thread keeps a few dozen units of each small size, taken and given back in batches under
// one lock; the statistics count them as in use.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace moremate {

struct TChunkStatistics {
    size_t nChunks = 0;        // allocated from the system, used or not
    size_t nUnits = 0;         // units in those chunks
    size_t nFreeUnits = 0;     // of which not in use
    size_t nUnusedChunks = 0;  // chunks with no unit in use, waiting to be reused or released
};

class CChunkAllocator {
  public:
    static constexpr size_t kChunkSize = size_t{2} << 20;
    static constexpr size_t kUnitSizeCount = 13;

    // Unit sizes in ascending order, each a multiple of 8 and at most a seventh of a chunk. Only
    // one allocator of the process may have thread caches, and it must never be destroyed; it also
    // takes its new chunks from the reserve that CChunkReserveScope keeps filled.
    explicit CChunkAllocator(const std::array<size_t, kUnitSizeCount>& unitSizes, bool bThreadCaches = false);
    // Every chunk goes back to the system; units still in use become invalid.
    ~CChunkAllocator();
    CChunkAllocator(const CChunkAllocator&) = delete;
    CChunkAllocator& operator=(const CChunkAllocator&) = delete;

    // Throws std::bad_alloc when the system has no memory.
    void* Allocate(size_t nBytes);
    // Null is ignored.
    void Free(void* p);
    // Moves the contents to a block of `nNewBytes` unless the block's unit fits that size. On
    // std::bad_alloc `p` stays valid and unchanged.
    void* Reallocate(void* p, size_t nNewBytes);

    void ReleaseUnusedChunks();
    TChunkStatistics Statistics() const;

    struct TThreadCache;

  private:
    struct TSizeClass;
    static size_t BlockSize(void* p);
    TSizeClass* ClassFor(size_t nBytes) const;
    // The calling thread's cache when `sizeClass` is served through one, else null.
    TThreadCache* CacheFor(const TSizeClass& sizeClass);

    std::unique_ptr<TSizeClass[]> m_pClasses;
};

// While one lives, a helper thread keeps a few chunks of the registers' allocator faulted in ahead
// of need, so that the system's clearing of fresh memory happens off the threads that take chunks,
// on a processor they leave free.
// A run's registers hold one; holders may nest and overlap, the helper ends with the last of them.
class CChunkReserveScope {
  public:
    CChunkReserveScope();
    ~CChunkReserveScope();
    CChunkReserveScope(const CChunkReserveScope&) = delete;
    CChunkReserveScope& operator=(const CChunkReserveScope&) = delete;
};

// Asks the reserve's helper, while one runs, to fault in the pages of fresh memory of the
// registers (such as a bucket array) once its chunks are ready: the system clears them there,
// not at their first use. The pages' contents stay as they are.
void PrefaultInBackground(void* p, size_t nBytes);

// The allocator of all temporary registers, sized for their nodes and arrays.
CChunkAllocator& RegisterChunkAllocator();

// "1. Number of allocated chunks = n (size MB)", the allocation units, the free units with the
// share in use, and the unused chunks waiting to be deallocated, one numbered item per line.
std::string ChunkAllocatorReport(const TChunkStatistics& statistics);

}  // namespace moremate
