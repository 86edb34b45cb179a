#include "temporary_register.h"

#include <mutex>
#include <string>

#include "coherence_report.h"

namespace moremate {

namespace {

struct TRemovalBounds {
    uint16_t nMaxMate;
    uint16_t nMaxNoMate;
};

template <int kRemovalBounds>
constexpr TRemovalBounds RemovalBounds(uint16_t n) {
    if constexpr (kRemovalBounds == 0) {
        return {n, static_cast<uint16_t>(n >= 2 ? n - 2 : 0)};
    } else {
        return {n, n};
    }
}

}  // namespace

template <int kRemovalBounds>
TTemporaryChessboardRegister<kRemovalBounds>::TTemporaryChessboardRegister(uint32_t nCapacity,
                                                                           size_t nBuckets,
                                                                           TChessboardRegister<bool>* pOwner)
    : TChessboardRegister<bool>(nCapacity, pOwner), m_table(nBuckets) {}

template <int kRemovalBounds>
bool TTemporaryChessboardRegister<kRemovalBounds>::Insert(uint16_t n, const TRegisterKey& position,
                                                          bool bThereIsMate, TSolvingMode mode) {
    if (!Accepts(n)) return false;
    MakeRoom();
    return Guarded([&] { return Store(n, position, bThereIsMate, mode); });
}

template <int kRemovalBounds>
TStoreOutcome TTemporaryChessboardRegister<kRemovalBounds>::Store(uint16_t n, const TRegisterKey& position,
                                                                  bool bThereIsMate, TSolvingMode mode) {
    TStoreOutcome stored;
    stored.n = n;
    stored.bThereIsMate = bThereIsMate;
    const bool bCheck = mode == TSolvingMode::Special && Services().bCheckCoherency;
    std::shared_lock lock(m_lock);
    const bool bAdded = m_table.Update(position, [&](TChessboardRegisterEntry& entry, bool bNew) {
        if (bNew) {
            SetFirstResult(entry, n, bThereIsMate);
            return;
        }
        stored.bStored = AddResult(entry, n, bThereIsMate, mode);
        if (bCheck && IsIncoherent(entry)) stored.incoherent = entry;
    });
    if (bAdded) {
        stored.bStored = true;
        CountAdded();
    }
    return stored;
}

template <int kRemovalBounds>
bool TTemporaryChessboardRegister<kRemovalBounds>::Merge(const TChessboardRegisterEntry& loaded,
                                                         uint32_t nHash) {
    MakeRoom();
    return Guarded([&] { return StoreLoaded(loaded, nHash); });
}

template <int kRemovalBounds>
bool TTemporaryChessboardRegister<kRemovalBounds>::UpdateLoaded(const TChessboardRegisterEntry& loaded,
                                                                uint32_t nHash, bool& bStored) {
    return m_table.Update(TRegisterKey(loaded.key, nHash), [&](TChessboardRegisterEntry& entry, bool bNew) {
        if (bNew) entry = loaded;
        bStored = bNew || MergeResults(entry, loaded);
    });
}

template <int kRemovalBounds>
TStoreOutcome TTemporaryChessboardRegister<kRemovalBounds>::StoreLoaded(
    const TChessboardRegisterEntry& loaded, uint32_t nHash) {
    TStoreOutcome stored;
    std::shared_lock lock(m_lock);
    if (UpdateLoaded(loaded, nHash, stored.bStored)) CountAdded();
    return stored;
}

// A batch that might fill the register, or an entry whose allocation fails, goes on one entry at a
// time, so that room is made as Merge makes it.
template <int kRemovalBounds>
void TTemporaryChessboardRegister<kRemovalBounds>::MergeBatch(
    std::span<const TChessboardRegisterEntry> entries, const uint32_t* pHashes) {
    size_t i = 0;
    TChessboardRegister<bool>& owner = Owner();
    if (owner.SurelyHasRoomFor(entries.size())) {
        uint32_t nAdded = 0;
        std::shared_lock lock(m_lock);
        try {
            for (bool bStored; i < entries.size(); ++i)
                nAdded += UpdateLoaded(entries[i], pHashes[i], bStored);
        } catch (const std::exception&) {
            // Nothing of entry i was stored: it goes on below, through Merge's own handling.
        }
        CountAdded(nAdded);
    }
    for (; i < entries.size(); ++i) Merge(entries[i], pHashes[i]);
}

template <int kRemovalBounds>
void TTemporaryChessboardRegister<kRemovalBounds>::ReportIncoherence(const TStoreOutcome& stored) const {
    const TRegisterServices& services = Services();
    if (!services.pReporter) return;
    services.pReporter->Report(ReportTitle(ReportKind::Error, services.languageId),
                               IncoherenceReport(stored.n, stored.bThereIsMate, *stored.incoherent));
}

template <int kRemovalBounds>
void TTemporaryChessboardRegister<kRemovalBounds>::CountAdded(uint32_t nAdded) {
    if (nAdded == 0) return;
    m_entries.Add(nAdded);
    CountOwnedElements(nAdded);
}

template <int kRemovalBounds>
std::optional<TChessboardRegisterEntry> TTemporaryChessboardRegister<kRemovalBounds>::Find(
    const TRegisterKey& position) const {
    std::shared_lock lock(m_lock);
    return m_table.Find(position);
}

template <int kRemovalBounds>
uint32_t TTemporaryChessboardRegister<kRemovalBounds>::RemoveNMovers(uint16_t n) {
    Services().Log("TTemporaryChessboardRegister::RemoveNMovers start. n=" + std::to_string(n));
    const TRemovalBounds bounds = RemovalBounds<kRemovalBounds>(n);
    uint64_t nRemoved = 0;
    {
        std::shared_lock lock(m_lock);
        nRemoved = m_table.RemoveIf([bounds](const TChessboardRegisterEntry& entry) {
            return entry.MovesMate <= bounds.nMaxMate && entry.MovesNoMate <= bounds.nMaxNoMate;
        });
    }
    SubtractRemoved(nRemoved);
    Services().Log("TTemporaryChessboardRegister::RemoveNMovers complete.");
    return static_cast<uint32_t>(nRemoved);
}

// Removals run one at a time while insertions only add, so a count below the number removed
// means the count drifted: it is then recounted with every other thread kept out.
template <int kRemovalBounds>
void TTemporaryChessboardRegister<kRemovalBounds>::SubtractRemoved(uint64_t nRemoved) {
    if (nRemoved <= EntryCount()) {
        m_entries.Subtract(static_cast<uint32_t>(nRemoved));
        CountOwnedElements(-static_cast<int64_t>(nRemoved));
        return;
    }
    std::unique_lock lock(m_lock);
    const auto nExact = static_cast<uint32_t>(m_table.CountEntries());
    const uint32_t nBefore = m_entries.Exchange(nExact);
    CountOwnedElements(static_cast<int64_t>(nExact) - nBefore);
}

template <int kRemovalBounds>
size_t TTemporaryChessboardRegister<kRemovalBounds>::BucketCount() const {
    std::shared_lock lock(m_lock);
    return m_table.BucketCount();
}

template <int kRemovalBounds>
void TTemporaryChessboardRegister<kRemovalBounds>::SetBucketCount(size_t nBuckets) {
    std::unique_lock lock(m_lock);
    TRegisterCombinedMap resized(nBuckets);
    if (resized.BucketCount() == m_table.BucketCount()) return;
    m_table.ForEachEntry([&resized](const TChessboardRegisterEntry& entry) {
        resized.Update(entry.key, [&entry](TChessboardRegisterEntry& copy, bool) { copy = entry; });
    });
    m_table.Swap(resized);
}

template <int kRemovalBounds>
TMapCensus TTemporaryChessboardRegister<kRemovalBounds>::Census() const {
    std::shared_lock lock(m_lock);
    return m_table.Census();
}

template class TTemporaryChessboardRegister<0>;
template class TTemporaryChessboardRegister<1>;

}  // namespace moremate
