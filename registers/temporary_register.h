// A temporary register: the hashed store of position entries, with the sub-problem store of its
// base. Two instantiations exist, differing only in what `RemoveNMovers` (n) removes:
//   <0> (the mate / no-mate store of a run): entries with MovesMate <= n and MovesNoMate <= n - 2,
//       so that a no-mate, which costs more to prove again, outlives a mate of the same level;
//   <1> (the doubtfulness stores): entries with both values <= n.
#pragma once

#include <atomic>
#include <cstdint>
#include <exception>
#include <optional>
#include <shared_mutex>
#include <span>
#include <utility>

#include "chessboard_register.h"
#include "entry_rules.h"
#include "register_combined_map.h"
#include "shared_count.h"

namespace moremate {

class TAggregatedTemporaryChessboardRegister;

// What storing one result did: whether anything was stored or changed, and, when checking, the
// entry found incoherent after storing the result at level n.
struct TStoreOutcome {
    bool bStored = false;
    std::optional<TChessboardRegisterEntry> incoherent;
    uint16_t n = 0;
    bool bThereIsMate = false;
};

template <int kRemovalBounds>
class TTemporaryChessboardRegister : public TChessboardRegister<bool> {
  public:
    TTemporaryChessboardRegister(uint32_t nCapacity, size_t nBuckets,
                                 TChessboardRegister<bool>* pOwner = nullptr);

    using TChessboardRegister<bool>::Insert;
    // Records that from `position` there is (or is not) a mate in n half-moves. Returns whether
    // anything was stored or changed. Safe to call from any number of threads.
    bool Insert(uint16_t n, const TRegisterKey& position, bool bThereIsMate,
                TSolvingMode mode = TSolvingMode::Normal);
    // Stores an entry read from a register file with both its values; `nHash` is its key's.
    bool Merge(const TChessboardRegisterEntry& entry, uint32_t nHash);
    bool Merge(const TChessboardRegisterEntry& entry) { return Merge(entry, RegisterHash(entry.key)); }
    // Merges a batch of such entries, `pHashes[i]` the hash of entries[i]'s key: as one Merge after
    // another, but under one hold of the register lock, with the element count added to once.
    void MergeBatch(std::span<const TChessboardRegisterEntry> entries, const uint32_t* pHashes);

    std::optional<TChessboardRegisterEntry> Find(const TRegisterKey& position) const;
    TRegisterAnswer Answer(uint16_t n, const TRegisterKey& position) const {
        std::shared_lock lock(m_lock);
        return m_table.Read(position,
                            [n](const TChessboardRegisterEntry* entry) { return AnswerFor(entry, n); });
    }
    // A hint given some work ahead of a lookup or insertion of `position` (a search: when it
    // generates the position), so that the memory accesses of several positions overlap.
    // Takes no lock; must not run concurrently with SetBucketCount.
    // Both steps need only the key's hash, RegisterHash(position).
    void Prefetch(uint32_t nHash, TPrefetchFor purpose = TPrefetchFor::Lookup) const {
        m_table.Prefetch(nHash, purpose);
    }
    // The step before Prefetch, some more work ahead: the bucket word alone.
    void PrefetchBucket(uint32_t nHash) const { m_table.PrefetchBucket(nHash); }

    // Removes the entries whose results are all small (see above); returns how many.
    virtual uint32_t RemoveNMovers(uint16_t n);

    uint32_t ElementCount() const override { return EntryCount() + ElementsBesideEntries(); }
    uint32_t ElementCountAtLeast() const override { return EntryCountAtLeast() + ElementsBesideEntries(); }
    uint32_t EntryCount() const { return m_entries.Load(); }
    // A register standing alone frees no room by itself: it refuses.
    bool EmptySomeDataWhenRegisterFull(bool) override { return false; }

    size_t BucketCount() const;
    // Redistributes the entries over a new number of buckets (rounded up to a power of two).
    virtual void SetBucketCount(size_t nBuckets);

    // Calls `visit(entry)` for every entry, bucket by bucket, each bucket under its lock.
    template <class FVisit>
    void ForEachEntry(FVisit&& visit) const {
        std::shared_lock lock(m_lock);
        m_table.ForEachEntry(visit);
    }
    TMapCensus Census() const;

  protected:
    friend class TAggregatedTemporaryChessboardRegister;

    // Runs `store` (returning TStoreOutcome) and reports what it found incoherent, once every lock is
    // released. A failed allocation loses the result and makes the owner free room.
    template <class FStore>
    bool Guarded(FStore&& store) {
        TStoreOutcome stored;
        try {
            stored = store();
        } catch (const std::exception&) {
            Services().Log("Exception caught in method TTemporaryChessboardRegister::Insert");
            Owner().EmptySomeDataWhenRegisterFull(false);
            return false;
        }
        if (stored.incoherent) ReportIncoherence(stored);
        return stored.bStored;
    }
    // Steps that store, under the register lock held shared and the bucket's lock.
    TStoreOutcome Store(uint16_t n, const TRegisterKey& position, bool bThereIsMate, TSolvingMode mode);
    TStoreOutcome StoreLoaded(const TChessboardRegisterEntry& loaded, uint32_t nHash);
    // StoreLoaded's step under the locks; returns whether the entry is new (not yet counted).
    bool UpdateLoaded(const TChessboardRegisterEntry& loaded, uint32_t nHash, bool& bStored);
    void ReportIncoherence(const TStoreOutcome& stored) const;
    void CountAdded(uint32_t nAdded = 1);
    void SubtractRemoved(uint64_t nRemoved);
    uint32_t EntryCountAtLeast() const { return m_entries.LoadAtLeast(); }
    // The elements counted besides the table's entries.
    virtual uint32_t ElementsBesideEntries() const { return SubproblemCount(); }

    TRegisterCombinedMap m_table;

  private:
    CSharedCount m_entries;
};

extern template class TTemporaryChessboardRegister<0>;
extern template class TTemporaryChessboardRegister<1>;

}  // namespace moremate
