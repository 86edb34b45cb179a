#include "bucket_arrays.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstdlib>
#include <deque>
#include <memory>
#include <mutex>
#include <new>

namespace moremate {
namespace {

constexpr size_t kHugePage = size_t{2} << 20;
// The two tables of a run and those of a heuristic pass's doubtful lines.
constexpr size_t kKeptArrays = 4;

// Every operation starts with a bucket word at a random place: in huge pages a large bucket
// array costs no page walks.
std::atomic<uint64_t>* AllocateBuckets(size_t nBuckets) {
    const size_t nBytes = nBuckets * sizeof(std::atomic<uint64_t>);
    const size_t nAlignment = nBytes >= kHugePage ? kHugePage : alignof(std::max_align_t);
    void* p = std::aligned_alloc(nAlignment, (nBytes + nAlignment - 1) / nAlignment * nAlignment);
    if (!p) throw std::bad_alloc();
    if (nAlignment == kHugePage) madvise(p, nBytes, MADV_HUGEPAGE);
    auto* pBuckets = static_cast<std::atomic<uint64_t>*>(p);
    std::uninitialized_value_construct_n(pBuckets, nBuckets);
    return pBuckets;
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
        std::atomic<uint64_t>* pOldest = nullptr;
        {
            std::lock_guard lock(m_mutex);
            m_kept.push_back({pBuckets, nBuckets});
            if (m_kept.size() > kKeptArrays) {
                pOldest = m_kept.front().pBuckets;
                m_kept.pop_front();
            }
        }
        std::free(pOldest);
    }

  private:
    std::mutex m_mutex;
    std::deque<TKeptArray> m_kept;
};

}  // namespace

std::atomic<uint64_t>* TakeBucketArray(size_t nBuckets) {
    std::atomic<uint64_t>* pBuckets = CKeptArrays::Instance().Take(nBuckets);
    return pBuckets ? pBuckets : AllocateBuckets(nBuckets);
}

void GiveBucketArray(std::atomic<uint64_t>* pBuckets, size_t nBuckets) {
    if (pBuckets) CKeptArrays::Instance().Give(pBuckets, nBuckets);
}

}  // namespace moremate
