#include "chunk_allocator.h"

#include <sys/mman.h>

#include <algorithm>
#include <bit>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

#include "core/thread_start.h"
#include "register_combined_map.h"

namespace moremate {
namespace {

// A chunk of units starts with its header, then a bit for each unit, set while the unit is free
// after use; its units follow, handed out first from those marked free (the lowest first), then
// from the part never used. The allocator never reads or writes the units themselves: handing
// out a unit freed long ago costs no wait for its memory. A chunk of one large block has no size
// class and holds the block's size.
struct TChunk {
    void* pClass = nullptr;   // the CChunkAllocator::TSizeClass; null for a large block
    TChunk* pNext = nullptr;  // in the list of chunks with free units
    TChunk* pPrev = nullptr;
    TChunk* pNextOfAll = nullptr;  // in the list of all chunks of the class
    TChunk* pPrevOfAll = nullptr;
    size_t nMarked = 0;     // units marked free
    size_t nFirstWord = 0;  // no mark lies in the words of the bits before this one
    uint8_t* pFresh = nullptr;
    size_t nUsed = 0;  // units in use; the block's size for a large block
};

constexpr size_t kChunkSize = CChunkAllocator::kChunkSize;
// The header of a large block; a size class's chunks have the free marks beside.
constexpr size_t kHeaderSize = (sizeof(TChunk) + 63) / 64 * 64;
// Sizes with fewer units per chunk are not cached: a thread would hold too much memory of them.
constexpr size_t kCachedMinUnitsPerChunk = 1024;

TChunk* ChunkOf(void* p) {
    return reinterpret_cast<TChunk*>(reinterpret_cast<uintptr_t>(p) & ~(kChunkSize - 1));
}
uint8_t* UnitsOf(TChunk* pChunk, size_t nHeaderSize = kHeaderSize) {
    return reinterpret_cast<uint8_t*>(pChunk) + nHeaderSize;
}
uint64_t* MarksOf(TChunk* pChunk) {
    return reinterpret_cast<uint64_t*>(pChunk + 1);
}
// The words of free marks for units of `nUnitSize`, enough for a chunk without header.
constexpr size_t MarkWords(size_t nUnitSize) {
    return (kChunkSize / nUnitSize + 63) / 64;
}

// Null when the system has no memory.
void* AllocateChunkMemory(size_t nBytes) {
    void* p = std::aligned_alloc(kChunkSize, nBytes);
    if (p) madvise(p, nBytes, MADV_HUGEPAGE);
    return p;
}

TChunk* NewChunk(size_t nBytes) {
    void* p = AllocateChunkMemory((nBytes + kChunkSize - 1) / kChunkSize * kChunkSize);
    if (!p) throw std::bad_alloc();
    return new (p) TChunk;
}

// Chunks made ready ahead by a helper thread, their memory already faulted in: the system clears
// a fresh page when it is first touched, and a search thread that takes a new chunk then finds
// that done. The helper clears pages on a processor that the search leaves free (the second one of
// a single search thread, the moments at the joins of several); a few chunks kept ready carry that
// work over to the moments the registers grow. It runs in the normal scheduling class: in the idle
// class, a machine kept busy by other programs held it off the processor in the middle of a
// clearing, with the address space's lock taken, and every thread that mapped memory meanwhile (a
// new thread's stack, a chunk) waited for it, up to seconds. The helper works while a
// CChunkReserveScope lives, and waits a while for the next one before it ends: the problems of a
// collection, one run after another, keep one helper rather than start one each. The chunks it
// made ready stay for the next takers.
class CChunkReserve {
  public:
    static constexpr size_t kReadyChunks = 8;
    static constexpr std::chrono::seconds kLinger{2};

    static CChunkReserve& Instance() {
        static CChunkReserve* const pReserve = new CChunkReserve;  // registers may outlive statics
        return *pReserve;
    }
    // A ready chunk, or null while none is ready; the helper, if it runs, then makes more.
    TChunk* Take() {
        std::lock_guard lock(m_mutex);
        if (m_nReady == 0) return nullptr;
        void* p = m_ready[--m_nReady];
        m_changed.notify_all();
        return new (p) TChunk;
    }
    // Once the chunks wanted are ready, the helper faults in these pages too; dropped when the
    // last holder leaves first.
    void Prefault(uint8_t* p, size_t nBytes) {
        std::lock_guard lock(m_mutex);
        if (m_nHolders == 0) return;
        m_toFault.push_back({p, nBytes});
        m_changed.notify_all();
    }
    // The helper is never joined: one still clearing a chunk or waiting for holders when the
    // program ends is ended with it.
    void AddHolder() {
        std::lock_guard lock(m_mutex);
        ++m_nHolders;
        if (!m_bHelperRuns) {
            m_bHelperRuns = true;
            StartThread([this] { MakeReady(); }).detach();
        }
        m_changed.notify_all();
    }
    void RemoveHolder() {
        std::lock_guard lock(m_mutex);
        if (--m_nHolders == 0) m_toFault.clear();
        m_changed.notify_all();
    }

  private:
    struct TRange {
        uint8_t* p = nullptr;
        size_t nBytes = 0;
    };

    // Waits for work while holders live; without holders, for a holder, up to kLinger. Returns
    // the range to fault in (empty: a chunk to make ready), or none when the helper ends.
    std::optional<TRange> NextWork() {
        std::unique_lock lock(m_mutex);
        for (;;) {
            if (m_nHolders == 0 && !m_changed.wait_for(lock, kLinger, [this] { return m_nHolders > 0; })) {
                m_bHelperRuns = false;
                return std::nullopt;
            }
            if (m_nReady < kReadyChunks) return TRange{};
            if (!m_toFault.empty()) {
                const TRange range = m_toFault.back();
                m_toFault.pop_back();
                return range;
            }
            m_changed.wait(
                lock, [this] { return m_nHolders == 0 || m_nReady < kReadyChunks || !m_toFault.empty(); });
        }
    }

    void MakeReady() {
        while (const std::optional<TRange> range = NextWork()) {
            if (range->nBytes > 0) {
                FaultIn(*range);
                continue;
            }
            auto* p = static_cast<volatile uint8_t*>(AllocateChunkMemory(kChunkSize));
            if (!p) {  // no memory: chunks are made where they are needed
                std::lock_guard lock(m_mutex);
                m_bHelperRuns = false;
                return;
            }
            for (size_t i = 0; i < kChunkSize; i += 4096) p[i] = 0;
            std::lock_guard lock(m_mutex);
            m_ready[m_nReady++] = const_cast<uint8_t*>(p);
        }
    }

    // A chunk's length at a time, stopped when the holders are gone (the range may be freed by
    // then). The pages are faulted in writable with their contents unchanged: harmless when the
    // memory is in use meanwhile, or was given back (the system then refuses).
    void FaultIn(const TRange& range) {
        for (size_t nDone = 0; nDone < range.nBytes; nDone += kChunkSize) {
            {
                std::lock_guard lock(m_mutex);
                if (m_nHolders == 0) return;
            }
            madvise(range.p + nDone, std::min(kChunkSize, range.nBytes - nDone), MADV_POPULATE_WRITE);
        }
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    void* m_ready[kReadyChunks] = {};
    std::vector<TRange> m_toFault;
    size_t m_nReady = 0;
    int m_nHolders = 0;
    bool m_bHelperRuns = false;
};

}  // namespace

struct CChunkAllocator::TSizeClass {
    size_t nIndex = 0;
    size_t nUnitSize = 0;
    bool bCached = false;       // served through the threads' caches
    bool bFromReserve = false;  // new chunks taken from the reserve when one is ready
    size_t nUnitsPerChunk = 0;
    size_t nHeaderSize = 0;  // the chunk's header with the free marks
    mutable std::mutex mutex;
    TChunk* pPartial = nullptr;  // chunks with a free unit and one in use at least
    TChunk* pAll = nullptr;
    TChunk* pUnused = nullptr;  // chunks with no unit in use, linked through pNext
    size_t nUnused = 0;
    size_t nChunks = 0;
    size_t nFreeUnits = 0;

    ~TSizeClass() {
        while (pAll) Release(pAll);
    }

    void Link(TChunk* pChunk) {
        pChunk->pPrev = nullptr;
        pChunk->pNext = pPartial;
        if (pPartial) pPartial->pPrev = pChunk;
        pPartial = pChunk;
    }
    void Unlink(TChunk* pChunk) {
        (pChunk->pPrev ? pChunk->pPrev->pNext : pPartial) = pChunk->pNext;
        if (pChunk->pNext) pChunk->pNext->pPrev = pChunk->pPrev;
    }

    // An unused chunk when one waits, else a new one; empty and in the list of free units.
    void AddChunk() {
        TChunk* pChunk;
        if (!pUnused) {
            pChunk = bFromReserve ? CChunkReserve::Instance().Take() : nullptr;
            if (!pChunk) pChunk = NewChunk(kChunkSize);
            pChunk->pClass = this;
            pChunk->pNextOfAll = pAll;
            if (pAll) pAll->pPrevOfAll = pChunk;
            pAll = pChunk;
            ++nChunks;
            nFreeUnits += nUnitsPerChunk;
        } else {
            pChunk = pUnused;
            pUnused = pChunk->pNext;
            --nUnused;
        }
        pChunk->nMarked = 0;
        pChunk->nFirstWord = 0;
        std::memset(MarksOf(pChunk), 0, MarkWords(nUnitSize) * sizeof(uint64_t));
        pChunk->pFresh = UnitsOf(pChunk, nHeaderSize);
        Link(pChunk);
    }

    // As many of `nUnits` as the system gives memory for, at least one (else std::bad_alloc).
    size_t AllocateMany(void** pUnits, size_t nUnits) {
        std::lock_guard lock(mutex);
        size_t i = 0;
        try {
            for (; i < nUnits; ++i) pUnits[i] = AllocateLocked();
        } catch (const std::bad_alloc&) {
            if (i == 0) throw;
        }
        return i;
    }
    void* AllocateLocked() {
        if (!pPartial) AddChunk();
        TChunk* pChunk = pPartial;
        void* p;
        if (pChunk->nMarked) {
            p = TakeMarked(pChunk);
        } else {
            p = pChunk->pFresh;
            pChunk->pFresh += nUnitSize;
        }
        if (++pChunk->nUsed == nUnitsPerChunk) Unlink(pChunk);
        --nFreeUnits;
        return p;
    }
    // The lowest unit marked free; there is one.
    void* TakeMarked(TChunk* pChunk) {
        uint64_t* pMarks = MarksOf(pChunk);
        while (pMarks[pChunk->nFirstWord] == 0) ++pChunk->nFirstWord;
        uint64_t& word = pMarks[pChunk->nFirstWord];
        const size_t nUnit = pChunk->nFirstWord * 64 + static_cast<size_t>(std::countr_zero(word));
        word &= word - 1;
        --pChunk->nMarked;
        return UnitsOf(pChunk, nHeaderSize) + nUnit * nUnitSize;
    }

    void FreeMany(void* const* pUnits, size_t nUnits) {
        std::lock_guard lock(mutex);
        for (size_t i = 0; i < nUnits; ++i) FreeLocked(pUnits[i]);
    }
    void FreeLocked(void* p) {
        TChunk* pChunk = ChunkOf(p);
        const auto nOffset = static_cast<uint32_t>(static_cast<uint8_t*>(p) - UnitsOf(pChunk, nHeaderSize));
        const size_t nUnit = nOffset / static_cast<uint32_t>(nUnitSize);
        MarksOf(pChunk)[nUnit / 64] |= uint64_t{1} << (nUnit % 64);
        pChunk->nFirstWord = std::min(pChunk->nFirstWord, nUnit / 64);
        ++pChunk->nMarked;
        if (pChunk->nUsed-- == nUnitsPerChunk) Link(pChunk);
        ++nFreeUnits;
        if (pChunk->nUsed > 0) return;
        Unlink(pChunk);
        pChunk->pNext = pUnused;
        pUnused = pChunk;
        ++nUnused;
    }

    // Returns a chunk with no unit in use (or any chunk, when the allocator dies) to the system.
    void Release(TChunk* pChunk) {
        (pChunk->pPrevOfAll ? pChunk->pPrevOfAll->pNextOfAll : pAll) = pChunk->pNextOfAll;
        if (pChunk->pNextOfAll) pChunk->pNextOfAll->pPrevOfAll = pChunk->pPrevOfAll;
        --nChunks;
        nFreeUnits -= nUnitsPerChunk - pChunk->nUsed;
        std::free(pChunk);
    }
    void ReleaseUnused() {
        std::lock_guard lock(mutex);
        while (pUnused) {
            TChunk* pChunk = pUnused;
            pUnused = pChunk->pNext;
            Release(pChunk);
        }
        nUnused = 0;
    }
};

// The units a thread keeps of each small size for the allocator with thread caches: taken from
// their size class and given back to it kBatch at a time, so that the class's lock is taken once
// per batch rather than once per call. Given back when the thread ends.
struct CChunkAllocator::TThreadCache {
    static constexpr size_t kBatch = 32;
    CChunkAllocator* pOwner = nullptr;
    void* units[kUnitSizeCount][2 * kBatch];
    size_t counts[kUnitSizeCount] = {};

    ~TThreadCache() {
        for (size_t i = 0; pOwner && i < kUnitSizeCount; ++i)
            pOwner->m_pClasses[i].FreeMany(units[i], counts[i]);
    }
    void* Allocate(TSizeClass& sizeClass) {
        size_t& n = counts[sizeClass.nIndex];
        if (n == 0) n = sizeClass.AllocateMany(units[sizeClass.nIndex], kBatch);
        return units[sizeClass.nIndex][--n];
    }
    void Free(TSizeClass& sizeClass, void* p) {
        size_t& n = counts[sizeClass.nIndex];
        if (n == 2 * kBatch) {
            sizeClass.FreeMany(units[sizeClass.nIndex] + kBatch, kBatch);
            n = kBatch;
        }
        units[sizeClass.nIndex][n++] = p;
    }
};

namespace {
thread_local CChunkAllocator::TThreadCache t_cache;
}  // namespace

CChunkAllocator::CChunkAllocator(const std::array<size_t, kUnitSizeCount>& unitSizes, bool bThreadCaches)
    : m_pClasses(new TSizeClass[kUnitSizeCount]) {
    for (size_t i = 0; i < kUnitSizeCount; ++i) {
        TSizeClass& sizeClass = m_pClasses[i];
        sizeClass.nIndex = i;
        sizeClass.nUnitSize = unitSizes[i];
        sizeClass.nHeaderSize = (sizeof(TChunk) + MarkWords(unitSizes[i]) * sizeof(uint64_t) + 63) / 64 * 64;
        sizeClass.nUnitsPerChunk = (kChunkSize - sizeClass.nHeaderSize) / unitSizes[i];
        sizeClass.bCached = bThreadCaches && sizeClass.nUnitsPerChunk >= kCachedMinUnitsPerChunk;
        sizeClass.bFromReserve = bThreadCaches;
    }
}

CChunkAllocator::TThreadCache* CChunkAllocator::CacheFor(const TSizeClass& sizeClass) {
    if (!sizeClass.bCached) return nullptr;
    if (!t_cache.pOwner) t_cache.pOwner = this;
    return &t_cache;
}

CChunkAllocator::~CChunkAllocator() = default;

CChunkAllocator::TSizeClass* CChunkAllocator::ClassFor(size_t nBytes) const {
    for (size_t i = 0; i < kUnitSizeCount; ++i) {
        if (nBytes <= m_pClasses[i].nUnitSize) return &m_pClasses[i];
    }
    return nullptr;
}

size_t CChunkAllocator::BlockSize(void* p) {
    const TChunk* pChunk = ChunkOf(p);
    return pChunk->pClass ? static_cast<const TSizeClass*>(pChunk->pClass)->nUnitSize : pChunk->nUsed;
}

void* CChunkAllocator::Allocate(size_t nBytes) {
    if (TSizeClass* pClass = ClassFor(nBytes)) {
        if (TThreadCache* pCache = CacheFor(*pClass)) return pCache->Allocate(*pClass);
        void* p;
        pClass->AllocateMany(&p, 1);
        return p;
    }
    TChunk* pChunk = NewChunk(kHeaderSize + nBytes);
    pChunk->nUsed = nBytes;
    return UnitsOf(pChunk);
}

void CChunkAllocator::Free(void* p) {
    if (!p) return;
    TChunk* pChunk = ChunkOf(p);
    if (pChunk->pClass) {
        TSizeClass& sizeClass = *static_cast<TSizeClass*>(pChunk->pClass);
        if (TThreadCache* pCache = CacheFor(sizeClass)) {
            pCache->Free(sizeClass, p);
        } else {
            sizeClass.FreeMany(&p, 1);
        }
    } else {
        std::free(pChunk);
    }
}

void* CChunkAllocator::Reallocate(void* p, size_t nNewBytes) {
    const void* pClass = ChunkOf(p)->pClass;
    if (pClass && ClassFor(nNewBytes) == pClass) return p;
    void* pMoved = Allocate(nNewBytes);
    std::memcpy(pMoved, p, std::min(BlockSize(p), nNewBytes));
    Free(p);
    return pMoved;
}

void CChunkAllocator::ReleaseUnusedChunks() {
    for (size_t i = 0; i < kUnitSizeCount; ++i) m_pClasses[i].ReleaseUnused();
}

TChunkStatistics CChunkAllocator::Statistics() const {
    TChunkStatistics statistics;
    for (size_t i = 0; i < kUnitSizeCount; ++i) {
        const TSizeClass& sizeClass = m_pClasses[i];
        std::lock_guard lock(sizeClass.mutex);
        statistics.nChunks += sizeClass.nChunks;
        statistics.nUnits += sizeClass.nChunks * sizeClass.nUnitsPerChunk;
        statistics.nFreeUnits += sizeClass.nFreeUnits;
        statistics.nUnusedChunks += sizeClass.nUnused;
    }
    return statistics;
}

CChunkReserveScope::CChunkReserveScope() {
    CChunkReserve::Instance().AddHolder();
}

CChunkReserveScope::~CChunkReserveScope() {
    CChunkReserve::Instance().RemoveHolder();
}

void PrefaultInBackground(void* p, size_t nBytes) {
    CChunkReserve::Instance().Prefault(static_cast<uint8_t*>(p), nBytes);
}

CChunkAllocator& RegisterChunkAllocator() {
    // Sorted-bucket headers, nodes of 1, 2, 4 and 8 entries, and sorted arrays of 16 to 2,048 entries.
    constexpr size_t kEntry = sizeof(TChessboardRegisterEntry);
    // Never destroyed: registers may outlive any static object.
    static CChunkAllocator* const pAllocator = new CChunkAllocator(
        {sizeof(TSortedBucket), NodeBytes(1), NodeBytes(2), NodeBytes(4), NodeBytes(8), 16 * kEntry,
         32 * kEntry, 64 * kEntry, 128 * kEntry, 256 * kEntry, 512 * kEntry, 1024 * kEntry, 2048 * kEntry},
        true);
    return *pAllocator;
}

std::string ChunkAllocatorReport(const TChunkStatistics& s) {
    const size_t nUsage = s.nUnits ? (s.nUnits - s.nFreeUnits) * 100 / s.nUnits : 0;
    char text[512];
    std::snprintf(text, sizeof text,
                  "%zd. Number of allocated chunks = %zu (%zu MB)\n"
                  "%zd. Total allocation units      = %zu\n"
                  "%zd. Total free allocation units = %zu (usage=%zu%%)\n"
                  "%zd. Number of unused chunks waiting to deallocate = %zu\n",
                  ptrdiff_t{1}, s.nChunks, s.nChunks * kChunkSize >> 20, ptrdiff_t{2}, s.nUnits, ptrdiff_t{3},
                  s.nFreeUnits, nUsage, ptrdiff_t{4}, s.nUnusedChunks);
    return text;
}

}  // namespace moremate
