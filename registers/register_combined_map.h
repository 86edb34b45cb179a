// The hash table of a temporary register. A bucket holds either a small node of up to eight
// entries kept in insertion order (scanned linearly), or, from the ninth entry on, a sorted array
// searched by lower bound. A node has room for 1, 2, 4 or 8 entries and doubles when full: most
// buckets hold one or two entries, and memory the register never fills is memory the system never
// has to clear. Entries are stored by value, so a lookup touches the bucket word and one block of
// entries and allocates nothing. Each bucket is locked on its own, by the spin byte in its word;
// callers hold the register lock shared around every operation and exclusively around Swap.
#pragma once

#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "bucket_lock.h"
#include "register_entry.h"

namespace moremate {

inline constexpr size_t kBucketNodeEntries = 8;

// The count comes first, in the cache line of the first entry, which a look-up reads with it. A
// node is allocated with room for `nCapacity` entries only (see NodeBytes); the array is declared
// at its largest. The two counts take four bytes, so that the node of one entry, the most common
// by far, is 72 bytes.
struct TBucketNode {
    uint16_t nCount;
    uint16_t nCapacity;
    TChessboardRegisterEntry entries[kBucketNodeEntries];
};
static_assert(offsetof(TBucketNode, entries) == 4);

// The bytes of a node with room for `nCapacity` entries, rounded up to 8.
constexpr size_t NodeBytes(size_t nCapacity) {
    return (offsetof(TBucketNode, entries) + nCapacity * sizeof(TChessboardRegisterEntry) + 7) / 8 * 8;
}

// The sorted form. The array's size follows from the count: the next power of two, at least 16.
struct TSortedBucket {
    TChessboardRegisterEntry* pEntries;
    uint64_t nCount;
};

size_t SortedBucketCapacity(uint64_t nCount);

// The cache lines a look-up loads ahead: a node of one entry whole (72 bytes, starting at most 56
// bytes into a line), the count and first entry of a larger node or of a sorted array. Most
// nodes hold one entry, and every line more would be one more memory access in flight per child.
inline constexpr size_t kPrefetchLines = 2;
// The cache lines of a full node, which an insertion loads ahead whatever the node's room.
inline constexpr size_t kFullNodeLines = (NodeBytes(kBucketNodeEntries) + 63) / 64;

enum class TPrefetchFor { Lookup, Insertion };

// Counts over a set of entries; `nFirst` and `nSecond` count the entries whose first
// (`MovesMate`) and second (`MovesNoMate`) value is set. Levels are those of set values.
struct TMapCensus {
    uint64_t nEntries = 0;
    uint64_t nSlots = 0;  // entry places allocated
    uint64_t nFirst = 0;
    uint64_t nSecond = 0;
    uint16_t nMinLevel = 0;  // 0 while no level was seen
    uint16_t nMaxLevel = 0;

    void Add(const TChessboardRegisterEntry& entry);
    void Add(const TMapCensus& other);
};

// Hands the indices given to Add on to `visit` kAhead indices late, and the last ones at Finish: a
// walk starts loading an index's memory when it adds it and finds it loaded at the visit.
template <size_t kAhead, class FVisit>
class CDelayedVisits {
  public:
    explicit CDelayedVisits(const FVisit& visit) : m_visit(visit) {}
    void Add(size_t index) {
        if (m_nSeen >= kAhead) m_visit(m_pending[m_nSeen % kAhead]);
        m_pending[m_nSeen++ % kAhead] = index;
    }
    void Finish() {
        for (size_t i = m_nSeen > kAhead ? m_nSeen - kAhead : 0; i < m_nSeen; ++i)
            m_visit(m_pending[i % kAhead]);
    }

  private:
    const FVisit& m_visit;
    size_t m_pending[kAhead];
    size_t m_nSeen = 0;
};

// Set once a program is about to end: from then on a table that is destroyed leaves its bucket
// array to the system (see LeaveBuckets) and its nodes in the chunk allocator, without the walk
// over its buckets that would free them one by one: the system takes the process's memory whole.
extern std::atomic<bool> g_bTablesLeftToTheSystem;

class TRegisterCombinedMap {
  public:
    // The bucket count is rounded up to a power of two.
    explicit TRegisterCombinedMap(size_t nBuckets);
    ~TRegisterCombinedMap();
    TRegisterCombinedMap(const TRegisterCombinedMap&) = delete;
    TRegisterCombinedMap& operator=(const TRegisterCombinedMap&) = delete;

    size_t BucketCount() const { return m_nMask + 1; }

    // Runs `update(entry, bAdded)` under the bucket lock on the entry of `item`, adding an entry
    // with both values 0 first when there is none. Returns bAdded. On std::bad_alloc nothing
    // has changed.
    template <class FUpdate>
    bool Update(const TRegisterKey& key, FUpdate&& update) {
        CBucketLock bucket(BucketOf(key.nHash));
        const bool bWasEmpty = bucket.Pointer() == nullptr;
        bool bAdded = false;
        TChessboardRegisterEntry& entry = FindOrAdd(bucket, key.item, bAdded);
        update(entry, bAdded);
        if (bWasEmpty) MarkInUse(key.nHash & m_nMask);
        return bAdded;
    }

    // Returns `read(entry)`, run under the bucket lock on the entry of `key`, or `read(nullptr)`
    // when there is none: a look-up that needs a little of the entry copies nothing.
    template <class FRead>
    auto Read(const TRegisterKey& key, FRead&& read) const {
        std::atomic<uint64_t>& word = BucketOf(key.nHash);
        // An empty bucket that nobody holds answers without its lock: an entry that another thread
        // is adding now is simply not there yet.
        if (word.load(std::memory_order_acquire) == 0) return read(nullptr);
        CBucketLock bucket(word);
        return read(Locate(bucket, key.item));
    }
    std::optional<TChessboardRegisterEntry> Find(const TRegisterKey& key) const {
        return Read(key, [](const TChessboardRegisterEntry* entry) {
            return entry ? std::optional<TChessboardRegisterEntry>(*entry) : std::nullopt;
        });
    }

    // The first of two steps ahead of a lookup: starts loading the bucket word of hash `nHash`,
    // without reading it. Must not run concurrently with Swap.
    void PrefetchBucket(uint32_t nHash) const { __builtin_prefetch(&BucketOf(nHash)); }

    // Starts loading the bucket of hash `nHash` and the entries it points to into the cache, without
    // locking; it waits for the bucket word only (after PrefetchBucket, some work earlier, that
    // is in the cache). For a look-up the first entries, read; for an insertion the lines of a full
    // node, which the new entry may be appended anywhere in, with the intent to write. A prefetch
    // never faults, so a pointer that a concurrent change has just made stale (or lines past a
    // small node) do no harm. Must not run concurrently with Swap.
    void Prefetch(uint32_t nHash, TPrefetchFor purpose = TPrefetchFor::Lookup) const {
        const uint64_t word = BucketOf(nHash).load(std::memory_order_relaxed);
        const char* p = static_cast<const char*>(BucketPointer(word));
        if (!p) return;  // an empty bucket: nothing to load
        if (purpose == TPrefetchFor::Lookup) {
            for (size_t line = 0; line < kPrefetchLines; ++line) __builtin_prefetch(p + 64 * line);
        } else {
            for (size_t line = 0; line < kFullNodeLines; ++line) __builtin_prefetch(p + 64 * line, 1);
        }
    }

    // Removes every entry for which `remove(entry)` holds, one bucket at a time; returns how many.
    template <class FRemove>
    uint64_t RemoveIf(FRemove&& remove) {
        uint64_t nRemoved = 0;
        ForEachBucketInUse([&](std::atomic<uint64_t>& word) {
            CBucketLock bucket(word);
            std::span<TChessboardRegisterEntry> entries = EntriesOf(bucket);
            size_t nKept = 0;
            for (const TChessboardRegisterEntry& entry : entries) {
                if (!remove(entry)) entries[nKept++] = entry;
            }
            if (nKept == entries.size()) return;
            nRemoved += entries.size() - nKept;
            Shrink(bucket, nKept);
        });
        return nRemoved;
    }

    // Calls `visit(entry)` for every entry, bucket by bucket in bucket order, each bucket under
    // its lock: consistent per bucket, not as a whole. `visit` must not use this table.
    template <class FVisit>
    void ForEachEntry(FVisit&& visit) const {
        ForEachBucketInUse([&](std::atomic<uint64_t>& word) {
            CBucketLock bucket(word);
            for (const TChessboardRegisterEntry& entry : EntriesOf(bucket)) visit(entry);
        });
    }

    uint64_t CountEntries() const;
    TMapCensus Census() const;
    void Swap(TRegisterCombinedMap& other);

  private:
    // The buckets are marked in use a cache line of them (kBucketsPerMark) at a time, when one of
    // them first holds an entry: a walk over the table then reads the lines that ever held
    // entries only, and a register of a small problem in a large table is quickly gone through.
    static constexpr size_t kBucketsPerMark = 8;
    static constexpr size_t kMarksPerWord = 64;
    static constexpr size_t kWalkAhead = 16;
    static constexpr size_t kLinesAhead = 16;

    std::atomic<uint64_t>& BucketOf(uint32_t nHash) const { return m_pBuckets[nHash & m_nMask]; }
    void MarkInUse(size_t nBucket) {
        std::atomic<uint64_t>& word = m_pInUse[nBucket / kBucketsPerMark / kMarksPerWord];
        const uint64_t bit = uint64_t{1} << (nBucket / kBucketsPerMark % kMarksPerWord);
        if (!(word.load(std::memory_order_relaxed) & bit)) word.fetch_or(bit, std::memory_order_relaxed);
    }
    // Calls `visit(word)` for the word of every bucket of the lines marked, in bucket order. The
    // first line of a bucket's entries (its count and first entry) is loaded kWalkAhead buckets
    // before the visit, so that a walk (emptying, census, saving, freeing) waits for memory about
    // once for many buckets instead of once for each.
    template <class FVisit>
    void ForEachBucketInUse(FVisit&& visit) const {
        const auto visitBucket = [&](size_t nBucket) { visit(m_pBuckets[nBucket]); };
        CDelayedVisits<kWalkAhead, decltype(visitBucket)> buckets(visitBucket);
        ForEachBucketIndexInUse([&](size_t nBucket) {
            if (const void* p = BucketPointer(m_pBuckets[nBucket].load(std::memory_order_relaxed)))
                __builtin_prefetch(p, 1);
            buckets.Add(nBucket);
        });
        buckets.Finish();
    }
    // Calls `visit(index)` for every bucket of the lines marked, in bucket order. A line of bucket
    // words is loaded kLinesAhead marked lines before its buckets are visited: the lines in use of
    // a large table lie far apart.
    template <class FVisit>
    void ForEachBucketIndexInUse(FVisit&& visit) const {
        const auto visitLine = [&](size_t nFirst) {
            for (size_t j = nFirst; j < nFirst + kBucketsPerMark && j <= m_nMask; ++j) visit(j);
        };
        CDelayedVisits<kLinesAhead, decltype(visitLine)> lines(visitLine);
        for (size_t i = 0; i < InUseWords(); ++i) {
            for (uint64_t marks = m_pInUse[i].load(std::memory_order_relaxed); marks; marks &= marks - 1) {
                const size_t nFirst = (i * kMarksPerWord + std::countr_zero(marks)) * kBucketsPerMark;
                __builtin_prefetch(&m_pBuckets[nFirst]);
                lines.Add(nFirst);
            }
        }
        lines.Finish();
    }
    size_t InUseWords() const {
        return (BucketCount() + kBucketsPerMark * kMarksPerWord - 1) / (kBucketsPerMark * kMarksPerWord);
    }
    static std::span<TChessboardRegisterEntry> EntriesOf(const CBucketLock& bucket);
    // The entry of `item` in the held bucket, or null.
    static const TChessboardRegisterEntry* Locate(const CBucketLock& bucket,
                                                  const TChessboardRegisterItem& item);
    static TChessboardRegisterEntry& FindOrAdd(CBucketLock& bucket, const TChessboardRegisterItem& item,
                                               bool& bAdded);
    // Stores a count lowered by a removal and releases memory no longer needed.
    static void Shrink(CBucketLock& bucket, size_t nCount);

    // Gives an array whose words are all 0 back for the next table of its size.
    struct TFreeBuckets {
        size_t nBuckets = 0;
        void operator()(std::atomic<uint64_t>* pBuckets) const;
    };

    size_t m_nMask;
    std::unique_ptr<std::atomic<uint64_t>[], TFreeBuckets> m_pBuckets;
    std::unique_ptr<std::atomic<uint64_t>[]> m_pInUse;
};

}  // namespace moremate
