// The temporary register of a solving run: its own store of mate / no-mate entries, plus one
// doubtfulness register per heuristics configuration for the "mate doubtful" / "not doubtful"
// entries found under it. All elements count together against one capacity, and emptying frees
// room across all of them.
//
// Locking: the doubtfulness map is read under this register's lock held shared and changed
// under it held exclusively (creation is rare, lookups are on the search's hot path); the pin
// counts have a mutex of their own. Order: this register's lock, then a doubtfulness
// register's lock, then a bucket lock.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <utility>
#include <vector>

#include "temporary_register.h"

namespace moremate {

// The heuristics set in the low half, its parameters in the high half. Key 0 stands for the
// mate / no-mate store in register files.
constexpr uint64_t ConfigurationKey(uint32_t nHeuristics, uint32_t nParameters) {
    return uint64_t{nParameters} << 32 | nHeuristics;
}

class TAggregatedTemporaryChessboardRegister : public TTemporaryChessboardRegister<0> {
  public:
    using TDoubtfulnessRegister = TTemporaryChessboardRegister<1>;

    TAggregatedTemporaryChessboardRegister(uint32_t nCapacity, size_t nBuckets);
    ~TAggregatedTemporaryChessboardRegister() override;

    virtual uint32_t DoubtfulElementCount() const;
    // Runs RemoveDoubtful for every configuration whose pin count is 0; returns the sum removed.
    virtual uint32_t RemoveAllUnpinnedDoubtful();
    // Over this register and every doubtfulness register.
    uint32_t RemoveNMovers(uint16_t n) override;
    // Frees room by removing unpinned doubtfulness registers and then levels of n, smallest first.
    // Serialised process-wide: returns false at once while another emptying runs.
    bool EmptySomeDataWhenRegisterFull(bool bFromInsertion) override;

    // Records that under configuration `nConfiguration` the line from `position` was found
    // "mate doubtful" (true) or "not doubtful" (false) at level n.
    bool InsertDoubtful(uint64_t nConfiguration, uint16_t n, const TRegisterKey& position, bool bDoubtful,
                        TSolvingMode mode = TSolvingMode::Normal);
    std::optional<TChessboardRegisterEntry> FindDoubtful(uint64_t nConfiguration,
                                                         const TRegisterKey& position) const;
    // An entry read from a register file into the group of `nConfiguration` (0: own store);
    // `nHash` is its key's.
    using TTemporaryChessboardRegister<0>::Merge;
    bool Merge(uint64_t nConfiguration, const TChessboardRegisterEntry& entry, uint32_t nHash);
    bool Merge(uint64_t nConfiguration, const TChessboardRegisterEntry& entry) {
        return Merge(nConfiguration, entry, RegisterHash(entry.key));
    }

    // A pinned configuration survives the next RemoveDoubtful of it (one per pin).
    void PinDoubtful(uint32_t nHeuristics, uint32_t nParameters);
    uint32_t PinCount(uint64_t nConfiguration) const;
    uint32_t RemoveDoubtful(uint32_t nHeuristics, uint32_t nParameters);

    // Applied to this register's table and to every doubtfulness register, present and future.
    void SetBucketCount(size_t nBuckets) override;

    // Called by every emptying before it removes anything (the automatic save, which decides
    // itself whether a save is due). An exception it throws leaves the emptying and reaches the
    // caller of the insertion that asked for room.
    void SetAutosave(std::function<void()> autosave) { m_autosave = std::move(autosave); }
    // Asked before each level the emptying removes; true ends the emptying as a success (the
    // attached register file has taken over).
    void SetRegisterFileStop(std::function<bool()> stop) { m_registerFileStop = std::move(stop); }

    std::vector<uint64_t> DoubtfulConfigurations() const;
    TMapCensus DoubtfulCensus() const;

    // Calls `visit(nConfiguration, entry)` for every entry: first the own store with key 0, then
    // each doubtfulness register in ascending key order; bucket by bucket, each under its lock.
    // Doubtfulness registers created meanwhile are left out, removed ones are still visited.
    template <class FVisit>
    void ForEachConfigurationEntry(FVisit&& visit) const {
        ForEachEntry([&visit](const TChessboardRegisterEntry& entry) { visit(uint64_t{0}, entry); });
        for (const auto& [nConfiguration, pRegister] : DoubtfulSnapshot()) {
            pRegister->ForEachEntry(
                [&visit, key = nConfiguration](const TChessboardRegisterEntry& entry) { visit(key, entry); });
        }
    }

  protected:
    // Those of every doubtfulness register and the sub-problem entries.
    uint32_t ElementsBesideEntries() const override;
    void AddOwnedElements(int64_t nDelta) override;

  private:
    // Runs `store(register)` on the doubtfulness register of `nConfiguration`, created when
    // first needed, after the capacity check.
    template <class FStore>
    bool StoreDoubtful(uint64_t nConfiguration, FStore&& store) {
        MakeRoom();
        return Guarded([&] {
            {
                std::shared_lock lock(m_lock);
                if (TDoubtfulnessRegister* pRegister = FindDoubtfulRegister(nConfiguration))
                    return store(*pRegister);
            }
            std::unique_lock lock(m_lock);
            return store(DoubtfulRegister(nConfiguration));
        });
    }
    // The doubtfulness registers as they are now, kept alive for a long reading without the
    // register lock (which would hold up every insertion behind a waiting writer).
    using TDoubtfulSnapshot = std::vector<std::pair<uint64_t, std::shared_ptr<const TDoubtfulnessRegister>>>;
    TDoubtfulSnapshot DoubtfulSnapshot() const;
    TDoubtfulnessRegister* FindDoubtfulRegister(uint64_t nConfiguration) const;
    TDoubtfulnessRegister& DoubtfulRegister(uint64_t nConfiguration);
    bool ConsumePin(uint64_t nConfiguration);
    uint32_t DestroyDoubtful(uint64_t nConfiguration);
    uint32_t FreeRoom() const;
    bool RemoveByLevels(bool bFromInsertion);
    void ClearShortPositions();

    std::map<uint64_t, std::shared_ptr<TDoubtfulnessRegister>> m_doubtful;
    std::map<uint64_t, uint32_t> m_pins;
    mutable std::mutex m_pinsMutex;
    alignas(64) std::atomic<uint32_t> m_nDoubtfulElements{0};
    int64_t m_nLastEmptyingMs;  // read and written under the process-wide emptying mutex
    std::function<void()> m_autosave;
    std::function<bool()> m_registerFileStop;
};

}  // namespace moremate
