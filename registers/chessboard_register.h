// The common base of the temporary registers: the settings every register shares with its
// owner, and the sub-problem store that records the result of each defence per level.
#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <optional>
#include <shared_mutex>
#include <utility>

#include "register_entry.h"
#include "register_lock.h"
#include "register_services.h"
#include "shared_count.h"

namespace moremate {

template <class TResult>
struct TSubproblemRegisterInfo {
    TResult result;  // for bool: true = mate, false = no mate
    double dValue;
    uint64_t nValue;
};

// The answer of the sub-problem store when it holds nothing for a position and level.
inline constexpr uint8_t kSubproblemUnknown = 254;

template <class TResult>
class TChessboardRegister {
  public:
    // `pOwner` is the aggregated register this one belongs to; null makes the register its own
    // owner. Counts, capacity, emptying and services are always those of the owner.
    TChessboardRegister(uint32_t nCapacity, TChessboardRegister* pOwner);
    virtual ~TChessboardRegister() = default;
    TChessboardRegister(const TChessboardRegister&) = delete;
    TChessboardRegister& operator=(const TChessboardRegister&) = delete;

    virtual uint32_t ElementCount() const { return SubproblemCount(); }
    // At most the count, short of it by less than CSharedCount::kMaxUnseen (the threads' latest
    // additions): insertions look at the exact count only when this one comes that close to the
    // capacity.
    virtual uint32_t ElementCountAtLeast() const { return ElementCount(); }
    // Whether `nMore` elements fit for certain, by that quick count alone.
    bool SurelyHasRoomFor(uint64_t nMore) const {
        return uint64_t{ElementCountAtLeast()} + nMore + CSharedCount::kMaxUnseen < Capacity();
    }
    // Frees room; returns false when it refused to run.
    virtual bool EmptySomeDataWhenRegisterFull(bool bFromInsertion) = 0;

    // Records the result of a sub-problem at level n with two values of the caller. Throws
    // ChessException when a different result is stored already.
    void Insert(uint16_t n, const TChessboardRegisterItem& position, TResult result, double dValue,
                uint64_t nValue);
    void InsertDefence(uint16_t n, const TChessboardRegisterItem& position, TResult result, double dValue,
                       uint64_t nValue);
    std::optional<TSubproblemRegisterInfo<TResult>> FindSubproblem(
        uint16_t n, const TChessboardRegisterItem& position) const;
    // The stored result as 0 or 1, or kSubproblemUnknown.
    uint8_t LookupSubproblem(uint16_t n, const TChessboardRegisterItem& position) const;
    uint32_t SubproblemCount() const { return m_nSubproblems.load(std::memory_order_relaxed); }

    uint32_t Capacity() const { return m_nCapacity.load(std::memory_order_relaxed); }
    void SetCapacity(uint32_t nCapacity) { m_nCapacity.store(nCapacity, std::memory_order_relaxed); }
    // While clear, positions with n below 4 are not stored.
    bool ShortPositions() const { return m_bShortPositions.load(std::memory_order_relaxed); }
    // With subsumption a sub-problem result erases the results it implies at other levels. Set
    // before the search starts.
    void SetSubsumption(bool bSubsumption) { m_bSubsumption = bSubsumption; }
    // Set before the search starts; owned registers use their owner's.
    void SetServices(TRegisterServices services) { m_services = std::move(services); }
    const TRegisterServices& Services() const { return Owner().m_services; }

  protected:
    TChessboardRegister& Owner() { return *m_pOwner; }
    const TChessboardRegister& Owner() const { return *m_pOwner; }
    bool IsOwnedByAnother() const { return m_pOwner != this; }
    bool Accepts(uint16_t n) const { return n >= 4 || ShortPositions(); }
    // Step taken before anything is stored: a full owner is asked to free room first.
    void MakeRoom();
    void SetShortPositionsFlag(bool bShortPositions) {
        m_bShortPositions.store(bShortPositions, std::memory_order_relaxed);
    }
    // The owner's view of the elements of the registers it owns.
    virtual void AddOwnedElements(int64_t) {}
    void CountOwnedElements(int64_t nDelta) {
        if (IsOwnedByAnother()) Owner().AddOwnedElements(nDelta);
    }

    mutable CRegisterLock m_lock;

  private:
    void InsertSubproblem(uint16_t n, const TChessboardRegisterItem& position, TResult result, double dValue,
                          uint64_t nValue, const char* polishMessage);
    void StoreSubproblem(uint16_t n, const TChessboardRegisterItem& position, TResult result, double dValue,
                         uint64_t nValue, const char* polishMessage);
    void EraseImpliedResults(uint16_t n, const TChessboardRegisterItem& position, TResult result);

    using TLevelMap = std::map<TChessboardRegisterItem, TSubproblemRegisterInfo<TResult>>;
    // The maps have a lock of their own, so that changing them holds up no hashed-store traffic.
    mutable std::shared_mutex m_subproblemsLock;
    std::map<uint16_t, TLevelMap> m_subproblems;
    std::atomic<uint32_t> m_nSubproblems{0};
    std::atomic<uint32_t> m_nCapacity;
    std::atomic<bool> m_bShortPositions{true};
    bool m_bSubsumption = false;
    TChessboardRegister* m_pOwner;
    TRegisterServices m_services;
};

}  // namespace moremate
