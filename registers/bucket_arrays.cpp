#include "bucket_arrays.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <mutex>
#include <new>

#include "chunk_allocator.h"

namespace moremate {
namespace {

constexpr size_t kHugePage = size_t{2} << 20;
// The two tables of a run and those of a heuristic pass's doubtful lines.
constexpr size_t kKeptArrays = 4;

size_t ArrayBytes(size_t nBuckets) {
    return nBuckets * sizeof(std::atomic<uint64_t>);
}
// An array of a huge page or more is mapped on its own; a smaller one comes from the heap.
bool Mapped(size_t nBuckets) {
    return ArrayBytes(nBuckets) >= kHugePage;
}
size_t MappedBytes(size_t nBuckets) {
    return (ArrayBytes(nBuckets) + kHugePage - 1) / kHugePage * kHugePage;
}

// Zero bytes of whole huge pages from the system, starting at a huge page; null when it has none.
void* MapHugePages(size_t nBytes) {
    const size_t nMapped = nBytes + kHugePage;  // room to start at a huge page
    void* pMapped = mmap(nullptr, nMapped, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (pMapped == MAP_FAILED) return nullptr;
    const uintptr_t nStart = reinterpret_cast<uintptr_t>(pMapped);
    const uintptr_t nAligned = (nStart + kHugePage - 1) / kHugePage * kHugePage;
    if (nAligned > nStart) munmap(pMapped, nAligned - nStart);
    munmap(reinterpret_cast<void*>(nAligned + nBytes), nStart + nMapped - nAligned - nBytes);
    void* p = reinterpret_cast<void*>(nAligned);
    madvise(p, nBytes, MADV_HUGEPAGE);
    return p;
}

// Every operation starts with a bucket word at a random place: in huge pages a large bucket
// array costs no page walks. Its zeros need no writing: the system clears each page at its first
// touch, which the chunk reserve's helper makes ahead of use on a spare processor.
std::atomic<uint64_t>* AllocateBuckets(size_t nBuckets) {
    void* p = Mapped(nBuckets) ? MapHugePages(MappedBytes(nBuckets))
                               : std::calloc(nBuckets, sizeof(std::atomic<uint64_t>));
    if (!p) throw std::bad_alloc();
    if (Mapped(nBuckets)) PrefaultInBackground(p, MappedBytes(nBuckets));
    return static_cast<std::atomic<uint64_t>*>(p);
}

void FreeBuckets(std::atomic<uint64_t>* pBuckets, size_t nBuckets) {
    if (Mapped(nBuckets)) {
        munmap(pBuckets, MappedBytes(nBuckets));
    } else {
        std::free(pBuckets);
    }
}

struct TKeptArray {
    std::atomic<uint64_t>* pBuckets;
    size_t nBuckets;
};

class CKeptArrays {
  public:
    static CKeptArrays& Instance() {
        static CKeptArrays* const pKept = new CKeptArrays;  // registers may outlive statics
        return *pKept;
    }
    std::atomic<uint64_t>* Take(size_t nBuckets) {
        std::lock_guard lock(m_mutex);
        const auto found = std::find_if(m_kept.begin(), m_kept.end(),
                                        [&](const TKeptArray& a) { return a.nBuckets == nBuckets; });
        if (found == m_kept.end()) return nullptr;
        std::atomic<uint64_t>* pBuckets = found->pBuckets;
        m_kept.erase(found);
        return pBuckets;
    }
    void Give(std::atomic<uint64_t>* pBuckets, size_t nBuckets) {
        TKeptArray oldest{nullptr, 0};
        {
            std::lock_guard lock(m_mutex);
            m_kept.push_back({pBuckets, nBuckets});
            if (m_kept.size() > kKeptArrays) {
                oldest = m_kept.front();
                m_kept.pop_front();
            }
        }
        if (oldest.pBuckets) FreeBuckets(oldest.pBuckets, oldest.nBuckets);
    }

  private:
    std::mutex m_mutex;
    std::deque<TKeptArray> m_kept;
};

}  // namespace

void LeaveBuckets(std::atomic<uint64_t>* pBuckets, size_t nBuckets) {
    if (!Mapped(nBuckets)) std::free(pBuckets);
}

std::atomic<uint64_t>* TakeBucketArray(size_t nBuckets) {
    std::atomic<uint64_t>* pBuckets = CKeptArrays::Instance().Take(nBuckets);
    return pBuckets ? pBuckets : AllocateBuckets(nBuckets);
}

void GiveBucketArray(std::atomic<uint64_t>* pBuckets, size_t nBuckets) {
    if (pBuckets) CKeptArrays::Instance().Give(pBuckets, nBuckets);
}

}  // namespace moremate
