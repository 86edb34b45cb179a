#include "register_combined_map.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <memory>
#include <new>
#include <utility>

#include "bucket_arrays.h"
#include "chunk_allocator.h"

namespace moremate {

namespace {

constexpr size_t kMinSortedCapacity = 16;

// Entries are trivially copyable: the chunk allocator may move them when an array is resized.
void* Allocate(size_t nBytes) {
    return RegisterChunkAllocator().Allocate(nBytes);
}
void Free(void* p) {
    RegisterChunkAllocator().Free(p);
}

TChessboardRegisterEntry* AllocateEntries(size_t nEntries) {
    return static_cast<TChessboardRegisterEntry*>(Allocate(nEntries * sizeof(TChessboardRegisterEntry)));
}

TChessboardRegisterEntry NewEntry(const TChessboardRegisterItem& item) {
    TChessboardRegisterEntry entry;
    entry.key = item;
    return entry;
}

TChessboardRegisterEntry* LowerBound(const TSortedBucket& sorted, const TChessboardRegisterItem& item) {
    return std::lower_bound(
        sorted.pEntries, sorted.pEntries + sorted.nCount, item,
        [](const TChessboardRegisterEntry& e, const TChessboardRegisterItem& key) { return e.key < key; });
}

// The entry of `item` in a sorted bucket, or null.
TChessboardRegisterEntry* FindSorted(const TSortedBucket& sorted, const TChessboardRegisterItem& item) {
    TChessboardRegisterEntry* found = LowerBound(sorted, item);
    return found != sorted.pEntries + sorted.nCount && found->key == item ? found : nullptr;
}

void FreeSorted(TSortedBucket* sorted) {
    Free(sorted->pEntries);
    Free(sorted);
}

void FreeBucket(void* pointer, bool bSorted) {
    if (bSorted) {
        FreeSorted(static_cast<TSortedBucket*>(pointer));
    } else {
        Free(pointer);
    }
}

// A node with room for `nCapacity` entries and none in it yet.
TBucketNode* AllocateNode(size_t nCapacity) {
    auto* node = static_cast<TBucketNode*>(Allocate(NodeBytes(nCapacity)));
    node->nCount = 0;
    node->nCapacity = static_cast<uint16_t>(nCapacity);
    return node;
}

// Appends to a node that has room, or to its copy with twice the room.
TChessboardRegisterEntry& AppendToNode(CBucketLock& bucket, TBucketNode* node,
                                       const TChessboardRegisterItem& item) {
    if (node->nCount == node->nCapacity) {
        const size_t nCapacity = 2 * node->nCapacity;
        node = static_cast<TBucketNode*>(RegisterChunkAllocator().Reallocate(node, NodeBytes(nCapacity)));
        node->nCapacity = static_cast<uint16_t>(nCapacity);
        bucket.Set(node, false);
    }
    node->entries[node->nCount] = NewEntry(item);
    return node->entries[node->nCount++];
}

TChessboardRegisterEntry& AddToEmpty(CBucketLock& bucket, const TChessboardRegisterItem& item) {
    TBucketNode* node = AllocateNode(1);
    bucket.Set(node, false);
    return AppendToNode(bucket, node, item);
}

// The ninth entry: the eight of the node move, in key order, into an array of 16.
TSortedBucket& ConvertToSorted(CBucketLock& bucket, TBucketNode& node) {
    auto* sorted = static_cast<TSortedBucket*>(Allocate(sizeof(TSortedBucket)));
    try {
        sorted->pEntries = AllocateEntries(kMinSortedCapacity);
    } catch (...) {
        Free(sorted);
        throw;
    }
    std::copy(node.entries, node.entries + kBucketNodeEntries, sorted->pEntries);
    sorted->nCount = kBucketNodeEntries;
    std::sort(
        sorted->pEntries, sorted->pEntries + kBucketNodeEntries,
        [](const TChessboardRegisterEntry& a, const TChessboardRegisterEntry& b) { return a.key < b.key; });
    Free(&node);
    bucket.Set(sorted, true);
    return *sorted;
}

TChessboardRegisterEntry& InsertSorted(TSortedBucket& sorted, const TChessboardRegisterItem& item) {
    size_t index = LowerBound(sorted, item) - sorted.pEntries;
    if (sorted.nCount == SortedBucketCapacity(sorted.nCount)) {
        sorted.pEntries = static_cast<TChessboardRegisterEntry*>(RegisterChunkAllocator().Reallocate(
            sorted.pEntries, 2 * sorted.nCount * sizeof(TChessboardRegisterEntry)));
    }
    TChessboardRegisterEntry* place = sorted.pEntries + index;
    std::copy_backward(place, sorted.pEntries + sorted.nCount, sorted.pEntries + sorted.nCount + 1);
    *place = NewEntry(item);
    ++sorted.nCount;
    return *place;
}

// A sorted bucket that fell to a node's size goes back to a node; a smaller one keeps its array
// when memory for the node is short.
void ShrinkSorted(CBucketLock& bucket, TSortedBucket& sorted, size_t nCount) {
    const size_t nOldCapacity = SortedBucketCapacity(sorted.nCount);
    sorted.nCount = nCount;
    if (nCount <= kBucketNodeEntries) {
        TBucketNode* node;
        try {
            node = AllocateNode(std::bit_ceil(nCount));
        } catch (const std::bad_alloc&) {
            return;
        }
        std::copy(sorted.pEntries, sorted.pEntries + nCount, node->entries);
        node->nCount = static_cast<uint16_t>(nCount);
        FreeSorted(&sorted);
        bucket.Set(node, false);
        return;
    }
    const size_t nCapacity = SortedBucketCapacity(nCount);
    if (nCapacity == nOldCapacity) return;
    // Failing, the larger array stays, which is still valid.
    try {
        sorted.pEntries = static_cast<TChessboardRegisterEntry*>(RegisterChunkAllocator().Reallocate(
            sorted.pEntries, nCapacity * sizeof(TChessboardRegisterEntry)));
    } catch (const std::bad_alloc&) {
    }
}

}  // namespace

size_t SortedBucketCapacity(uint64_t nCount) {
    return std::max<size_t>(kMinSortedCapacity, std::bit_ceil(nCount));
}

void TMapCensus::Add(const TChessboardRegisterEntry& entry) {
    ++nEntries;
    nFirst += entry.MovesMate != 0;
    nSecond += entry.MovesNoMate != 0;
    for (uint16_t level : {entry.MovesMate, entry.MovesNoMate}) {
        if (level == 0) continue;
        if (nMinLevel == 0 || level < nMinLevel) nMinLevel = level;
        nMaxLevel = std::max(nMaxLevel, level);
    }
}

void TMapCensus::Add(const TMapCensus& other) {
    nEntries += other.nEntries;
    nSlots += other.nSlots;
    nFirst += other.nFirst;
    nSecond += other.nSecond;
    if (other.nMinLevel != 0 && (nMinLevel == 0 || other.nMinLevel < nMinLevel)) nMinLevel = other.nMinLevel;
    nMaxLevel = std::max(nMaxLevel, other.nMaxLevel);
}

TRegisterCombinedMap::TRegisterCombinedMap(size_t nBuckets)
    : m_nMask(std::bit_ceil(std::max<size_t>(nBuckets, 1)) - 1),
      m_pBuckets(TakeBucketArray(m_nMask + 1), TFreeBuckets{m_nMask + 1}),
      m_pInUse(std::make_unique<std::atomic<uint64_t>[]>(InUseWords())) {}

void TRegisterCombinedMap::TFreeBuckets::operator()(std::atomic<uint64_t>* pBuckets) const {
    GiveBucketArray(pBuckets, nBuckets);
}

std::atomic<bool> g_bTablesLeftToTheSystem{false};

// Words outside the lines in use were never written: the array goes back all 0.
// The chunk allocator frees a node by its address alone: the walk loads no entries ahead.
TRegisterCombinedMap::~TRegisterCombinedMap() {
    if (g_bTablesLeftToTheSystem.load(std::memory_order_relaxed)) {
        LeaveBuckets(m_pBuckets.release(), BucketCount());  // the nodes stay in the allocator's chunks
        return;
    }
    ForEachBucketIndexInUse([this](size_t nBucket) {
        std::atomic<uint64_t>& word = m_pBuckets[nBucket];
        const uint64_t value = word.load(std::memory_order_relaxed);
        FreeBucket(BucketPointer(value), IsSortedBucket(value));
        word.store(0, std::memory_order_relaxed);
    });
}

void TRegisterCombinedMap::Swap(TRegisterCombinedMap& other) {
    std::swap(m_nMask, other.m_nMask);
    std::swap(m_pBuckets, other.m_pBuckets);
    std::swap(m_pInUse, other.m_pInUse);
}

std::span<TChessboardRegisterEntry> TRegisterCombinedMap::EntriesOf(const CBucketLock& bucket) {
    if (!bucket.Pointer()) return {};
    if (bucket.IsSorted()) {
        auto* sorted = static_cast<TSortedBucket*>(bucket.Pointer());
        return {sorted->pEntries, sorted->nCount};
    }
    auto* node = static_cast<TBucketNode*>(bucket.Pointer());
    return {node->entries, node->nCount};
}

// One bucket word and one block of entries: a node is scanned in place (its entries share a few
// cache lines), a sorted array is searched by halves; only a new bucket allocates.
TChessboardRegisterEntry& TRegisterCombinedMap::FindOrAdd(CBucketLock& bucket,
                                                          const TChessboardRegisterItem& item, bool& bAdded) {
    if (!bucket.Pointer()) {
        bAdded = true;
        return AddToEmpty(bucket, item);
    }
    if (bucket.IsSorted()) {
        auto& sorted = *static_cast<TSortedBucket*>(bucket.Pointer());
        if (TChessboardRegisterEntry* found = FindSorted(sorted, item)) return *found;
        bAdded = true;
        return InsertSorted(sorted, item);
    }
    auto& node = *static_cast<TBucketNode*>(bucket.Pointer());
    for (size_t i = 0; i < node.nCount; ++i) {
        if (node.entries[i].key == item) return node.entries[i];
    }
    bAdded = true;
    if (node.nCount < kBucketNodeEntries) return AppendToNode(bucket, &node, item);
    return InsertSorted(ConvertToSorted(bucket, node), item);
}

void TRegisterCombinedMap::Shrink(CBucketLock& bucket, size_t nCount) {
    if (nCount == 0) {
        FreeBucket(bucket.Pointer(), bucket.IsSorted());
        bucket.Set(nullptr, false);
    } else if (bucket.IsSorted()) {
        ShrinkSorted(bucket, *static_cast<TSortedBucket*>(bucket.Pointer()), nCount);
    } else {
        static_cast<TBucketNode*>(bucket.Pointer())->nCount = static_cast<uint16_t>(nCount);
    }
}

const TChessboardRegisterEntry* TRegisterCombinedMap::Locate(const CBucketLock& bucket,
                                                             const TChessboardRegisterItem& item) {
    if (!bucket.Pointer()) return nullptr;
    if (bucket.IsSorted()) return FindSorted(*static_cast<const TSortedBucket*>(bucket.Pointer()), item);
    for (const TChessboardRegisterEntry& entry : EntriesOf(bucket)) {
        if (entry.key == item) return &entry;
    }
    return nullptr;
}

uint64_t TRegisterCombinedMap::CountEntries() const {
    uint64_t nCount = 0;
    ForEachBucketInUse([&](std::atomic<uint64_t>& word) {
        CBucketLock bucket(word);
        nCount += EntriesOf(bucket).size();
    });
    return nCount;
}

TMapCensus TRegisterCombinedMap::Census() const {
    TMapCensus census;
    ForEachBucketInUse([&](std::atomic<uint64_t>& word) {
        CBucketLock bucket(word);
        std::span<TChessboardRegisterEntry> entries = EntriesOf(bucket);
        if (!bucket.Pointer()) return;
        census.nSlots += bucket.IsSorted() ? SortedBucketCapacity(entries.size())
                                           : static_cast<const TBucketNode*>(bucket.Pointer())->nCapacity;
        for (const TChessboardRegisterEntry& entry : entries) census.Add(entry);
    });
    return census;
}

}  // namespace moremate
