#include "proof_number_table.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <new>

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

}  // namespace

void CProofNumberTable::TUnmap::operator()(TBucket* p) const {
    munmap(p, bytes);
}

CProofNumberTable::CAccess::CAccess(const CProofNumberTable& table, size_t bucket)
    : m_pSweep(table.m_bShared ? &table.m_sweep : nullptr), m_pStripe(table.StripeOf(bucket)) {
    if (m_pSweep) m_pSweep->lock_shared();
    if (m_pStripe) m_pStripe->lock();
}

CProofNumberTable::CAccess::~CAccess() {
    if (m_pStripe) m_pStripe->unlock();
    if (m_pSweep) m_pSweep->unlock_shared();
}

CProofNumberTable::CProofNumberTable(uint64_t bytes, bool shared)
    : m_bShared(shared),
      m_nBuckets(std::bit_floor(std::max<uint64_t>(1, bytes / sizeof(TBucket)))),
      m_pBuckets(static_cast<TBucket*>(MapZeroed(m_nBuckets * sizeof(TBucket))),
                 TUnmap{m_nBuckets * sizeof(TBucket)}) {}

bool CProofNumberTable::Probe(const TPositionKey& key, TProofNumbers& out) const {
    const size_t b = BucketOf(key);
    const CAccess access(*this, b);
    for (const TEntry& e : m_pBuckets[b].entries) {
        if (e.work != 0 && e.hash == key.hash && e.check == key.check) {
            out = {e.pn, e.dn};
            return true;
        }
    }
    return false;
}

void CProofNumberTable::Store(const TPositionKey& key, const TProofNumbers& numbers, uint64_t work) {
    CollectIfFull();
    const size_t b = BucketOf(key);
    const CAccess access(*this, b);
    m_nStores.fetch_add(1, std::memory_order_relaxed);
    TEntry* slot = nullptr;
    for (TEntry& e : m_pBuckets[b].entries) {
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
    std::memset(m_pBuckets.get(), 0, m_nBuckets * sizeof(TBucket));
    m_nUsed = 0;
}

// The median work of a sample of entries in use.
uint64_t CProofNumberTable::MedianWork() const {
    std::vector<uint64_t> sample;
    const size_t step = std::max<size_t>(1, m_nBuckets / 4096);
    for (size_t b = 0; b < m_nBuckets; b += step)
        for (const TEntry& e : m_pBuckets[b].entries)
            if (e.work != 0) sample.push_back(e.work);
    if (sample.empty()) return 0;
    std::nth_element(sample.begin(), sample.begin() + sample.size() / 2, sample.end());
    return sample[sample.size() / 2];
}

void CProofNumberTable::CollectIfFull() {
    const uint64_t capacity = m_nBuckets * kWays;
    if (m_nUsed.load(std::memory_order_relaxed) * 10 < capacity * 9) return;
    const std::unique_lock sweep(m_sweep);
    if (m_nUsed.load(std::memory_order_relaxed) * 10 < capacity * 9) return;  // another thread collected
    const uint64_t median = MedianWork();
    uint64_t emptied = 0;
    for (size_t b = 0; b < m_nBuckets; ++b)
        for (TEntry& e : m_pBuckets[b].entries)
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
