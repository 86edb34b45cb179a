// The table of the proof-number search: proof and disproof numbers of (position, half-moves
// left) nodes, with the work spent on each. Shared by the threads of a pass.
//
// Buckets of four entries (two cache lines); a bucket's stripe lock is one of many, so threads
// rarely meet. The table starts at 16 MB and grows fourfold when a sixteenth of its entries are
// in use, up to its size: a short search touches little memory, a long one gets the whole table
// (while growing, the old and the new array are held together for a moment). A full
// bucket gives up its entry of least work: that drops the small subtrees, which are cheap to
// search again, and keeps the large ones. When the table at its full size is nearly full, a
// collection empties every open entry whose work is below the median of a sample; settled
// entries are kept in the temporary register too, so losing them costs one look-up.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <shared_mutex>

#include "position_key.h"

namespace moremate {

// Proof and disproof numbers; kInfinity marks the settled side (pn 0 / dn kInfinity: proven).
inline constexpr uint32_t kInfinity = 0x7fffffff;

// Aligned to its size so that std::atomic<TProofNumbers> is lock-free with every compiler.
struct alignas(8) TProofNumbers {
    uint32_t pn = 1;
    uint32_t dn = 1;
    bool Proven() const { return pn == 0; }
    bool Disproven() const { return dn == 0; }
    bool Settled() const { return pn == 0 || dn == 0; }
};

struct TProofNumberTableStats {
    uint64_t capacity = 0;  // entries
    uint64_t used = 0;      // entries in use now
    uint64_t stores = 0;
    uint64_t replacements = 0;  // entries given up to a node of more work
    uint64_t collections = 0;   // sweeps of the small subtrees
    uint64_t collected = 0;     // entries they emptied
};

class CProofNumberTable {
  public:
    // Sized to at most `bytes` (at least one bucket). A table of one thread (`shared` false)
    // takes no locks.
    explicit CProofNumberTable(uint64_t bytes, bool shared = true);
    ~CProofNumberTable();
    CProofNumberTable(const CProofNumberTable&) = delete;
    CProofNumberTable& operator=(const CProofNumberTable&) = delete;

    bool Probe(const TPositionKey& key, TProofNumbers& out) const;
    // Starts loading the bucket of `key` into the cache, without waiting (a hint: a table that
    // grows meanwhile only makes it useless).
    void Prefetch(const TPositionKey& key) const {
        const TBucket* buckets = m_pBuckets.load(std::memory_order_relaxed);
        const char* bucket = reinterpret_cast<const char*>(&buckets[BucketOf(key)]);
        __builtin_prefetch(bucket);
        __builtin_prefetch(bucket + 64);
    }
    void Store(const TPositionKey& key, const TProofNumbers& numbers, uint64_t work);
    void Clear();

    TProofNumberTableStats Stats() const;
    static constexpr uint64_t kEntryBytes = 32;

  private:
    struct TEntry {  // all zero: empty
        uint64_t hash;
        uint64_t check;
        uint32_t pn;
        uint32_t dn;
        uint64_t work;  // 0: empty
    };
    static constexpr size_t kWays = 4;
    static constexpr size_t kStripes = 4096;
    struct TBucket {
        TEntry entries[kWays];
    };

    size_t BucketOf(const TPositionKey& key) const {
        return key.hash & (m_nBuckets.load(std::memory_order_relaxed) - 1);
    }
    std::mutex* StripeOf(size_t bucket) const { return m_bShared ? &m_aStripes[bucket % kStripes] : nullptr; }
    // One access to the bucket of a key, with its locks (none in a table of one thread).
    class CAccess {
      public:
        CAccess(const CProofNumberTable& table, const TPositionKey& key);
        ~CAccess();
        CAccess(const CAccess&) = delete;
        CAccess& operator=(const CAccess&) = delete;
        TEntry* Entries() const { return m_pBucket->entries; }

      private:
        std::shared_mutex* m_pSweep;
        TBucket* m_pBucket = nullptr;
        std::mutex* m_pStripe = nullptr;
    };
    // Grows the table, or at its full size collects, when it is filled to that step's mark.
    void MakeRoom();
    void Grow();
    void Collect();
    uint64_t MedianWork() const;

    bool m_bShared;
    // Zeroed pages from the system, huge where it can: memory is only touched where entries
    // are stored, and a probe at a random place costs no page walk. Changed only under the
    // exclusive lock of `m_sweep`; atomic for the prefetch, which reads them without it.
    std::atomic<size_t> m_nMaxBuckets{0};  // lowered to the size reached when memory runs out
    std::atomic<size_t> m_nBuckets{0};
    std::atomic<TBucket*> m_pBuckets{nullptr};
    mutable std::unique_ptr<std::mutex[]> m_aStripes = std::make_unique<std::mutex[]>(kStripes);
    mutable std::shared_mutex m_sweep;  // shared by every access, exclusive for a collection
    std::atomic<uint64_t> m_nUsed{0}, m_nStores{0}, m_nReplacements{0}, m_nCollections{0}, m_nCollected{0};
};

}  // namespace moremate
