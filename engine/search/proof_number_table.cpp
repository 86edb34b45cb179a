#include "proof_number_table.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <new>
#include <span>

#include <sys/mman.h>
#include <vector>

namespace moremate {

namespace {

void* MapZeroed(size_t bytes) {
    void* p = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (p == MAP_FAILED) throw std::bad_alloc();
    madvise(p, bytes, MADV_HUGEPAGE);
    return p;
}

// The size a table starts at, unless its whole size is smaller.
constexpr uint64_t kFirstBytes = 16ULL << 20;

void Unmap(void* p, size_t bytes) {
    if (p) munmap(p, bytes);
}

}  // namespace

CProofNumberTable::CAccess::CAccess(const CProofNumberTable& table, const TPositionKey& key)
    : m_pSweep(table.m_bShared ? &table.m_sweep : nullptr) {
    if (m_pSweep) m_pSweep->lock_shared();
    const size_t bucket = table.BucketOf(key);
    m_pBucket = table.m_pBuckets.load(std::memory_order_relaxed) + bucket;
    m_pStripe = table.StripeOf(bucket);
    if (m_pStripe) m_pStripe->lock();
}

CProofNumberTable::CAccess::~CAccess() {
    if (m_pStripe) m_pStripe->unlock();
    if (m_pSweep) m_pSweep->unlock_shared();
}

CProofNumberTable::CProofNumberTable(uint64_t bytes, bool shared)
    : m_bShared(shared), m_nMaxBuckets(std::bit_floor(std::max<uint64_t>(1, bytes / sizeof(TBucket)))) {
    const size_t first = std::min<size_t>(m_nMaxBuckets.load(), kFirstBytes / sizeof(TBucket));
    m_pBuckets = static_cast<TBucket*>(MapZeroed(first * sizeof(TBucket)));
    m_nBuckets = first;
}

CProofNumberTable::~CProofNumberTable() {
    Unmap(m_pBuckets.load(), m_nBuckets.load() * sizeof(TBucket));
}

bool CProofNumberTable::Probe(const TPositionKey& key, TProofNumbers& out) const {
    const CAccess access(*this, key);
    for (const TEntry& e : std::span(access.Entries(), kWays)) {
        if (e.work != 0 && e.hash == key.hash && e.check == key.check) {
            out = {e.pn, e.dn};
            return true;
        }
    }
    return false;
}

void CProofNumberTable::Store(const TPositionKey& key, const TProofNumbers& numbers, uint64_t work) {
    MakeRoom();
    const CAccess access(*this, key);
    m_nStores.fetch_add(1, std::memory_order_relaxed);
    TEntry* slot = nullptr;
    for (TEntry& e : std::span(access.Entries(), kWays)) {
        if (e.work != 0 && e.hash == key.hash && e.check == key.check) {
            e.pn = numbers.pn;
            e.dn = numbers.dn;
            e.work = std::max(e.work, work);
            return;
        }
        if (!slot || e.work < slot->work) slot = &e;
    }
    if (slot->work == 0)
        m_nUsed.fetch_add(1, std::memory_order_relaxed);
    else
        m_nReplacements.fetch_add(1, std::memory_order_relaxed);
    *slot = TEntry{key.hash, key.check, numbers.pn, numbers.dn, std::max<uint64_t>(work, 1)};
}

void CProofNumberTable::Clear() {
    const std::unique_lock sweep(m_sweep);
    std::memset(m_pBuckets.load(), 0, m_nBuckets * sizeof(TBucket));
    m_nUsed = 0;
}

// The median work of a sample of entries in use.
uint64_t CProofNumberTable::MedianWork() const {
    std::vector<uint64_t> sample;
    const size_t buckets = m_nBuckets.load();
    const size_t step = std::max<size_t>(1, buckets / 4096);
    for (size_t b = 0; b < buckets; b += step)
        for (const TEntry& e : m_pBuckets.load()[b].entries)
            if (e.work != 0) sample.push_back(e.work);
    if (sample.empty()) return 0;
    std::nth_element(sample.begin(), sample.begin() + sample.size() / 2, sample.end());
    return sample[sample.size() / 2];
}

void CProofNumberTable::MakeRoom() {
    // A sixteenth in use before the table's full size keeps buckets from overflowing (an entry
    // given up costs its subtree again); nine tenths at the full size before a collection.
    const auto due = [this] {
        const uint64_t capacity = m_nBuckets.load(std::memory_order_relaxed) * kWays;
        const uint64_t used = m_nUsed.load(std::memory_order_relaxed);
        return m_nBuckets.load(std::memory_order_relaxed) < m_nMaxBuckets.load(std::memory_order_relaxed)
                   ? used * 16 >= capacity
                   : used * 10 >= capacity * 9;
    };
    if (!due()) return;
    std::unique_lock sweep(m_sweep, std::defer_lock);
    if (m_bShared) {
        sweep.lock();
        if (!due()) return;  // another thread made room
    }
    if (m_nBuckets.load(std::memory_order_relaxed) < m_nMaxBuckets.load(std::memory_order_relaxed))
        Grow();
    else
        Collect();
}

// Four times the buckets, or the full size: the entries of bucket b go to buckets whose number
// leaves b over the old count, which take entries of no other bucket, so each fits.
void CProofNumberTable::Grow() {
    const size_t oldCount = m_nBuckets.load(std::memory_order_relaxed);
    TBucket* old = m_pBuckets.load(std::memory_order_relaxed);
    const size_t newCount = std::min(oldCount * 4, m_nMaxBuckets.load(std::memory_order_relaxed));
    TBucket* grown = nullptr;
    try {
        grown = static_cast<TBucket*>(MapZeroed(newCount * sizeof(TBucket)));
    } catch (const std::bad_alloc&) {
        m_nMaxBuckets = oldCount;
        return;
    }
    for (size_t b = 0; b < oldCount; ++b) {
        for (const TEntry& e : old[b].entries) {
            if (e.work == 0) continue;
            TEntry* slot = grown[e.hash & (newCount - 1)].entries;
            while (slot->work != 0) ++slot;
            *slot = e;
        }
    }
    m_pBuckets.store(grown, std::memory_order_relaxed);
    m_nBuckets.store(newCount, std::memory_order_relaxed);
    Unmap(old, oldCount * sizeof(TBucket));
}

void CProofNumberTable::Collect() {
    const uint64_t median = MedianWork();
    uint64_t emptied = 0;
    TBucket* buckets = m_pBuckets.load(std::memory_order_relaxed);
    for (size_t b = 0; b < m_nBuckets.load(std::memory_order_relaxed); ++b)
        for (TEntry& e : buckets[b].entries)
            if (e.work != 0 && e.work <= median) {
                e = TEntry{};
                ++emptied;
            }
    m_nUsed -= emptied;
    ++m_nCollections;
    m_nCollected += emptied;
}

TProofNumberTableStats CProofNumberTable::Stats() const {
    return {m_nBuckets * kWays,     m_nUsed.load(),        m_nStores.load(),
            m_nReplacements.load(), m_nCollections.load(), m_nCollected.load()};
}

}  // namespace moremate
