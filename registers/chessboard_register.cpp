#include "chessboard_register.h"

#include <mutex>
#include <shared_mutex>

#include "core/chess_exception.h"

namespace moremate {

template <class TResult>
TChessboardRegister<TResult>::TChessboardRegister(uint32_t nCapacity, TChessboardRegister* pOwner)
    : m_nCapacity(nCapacity), m_pOwner(pOwner ? pOwner : this) {}

template <class TResult>
void TChessboardRegister<TResult>::MakeRoom() {
    TChessboardRegister& owner = Owner();
    if (owner.SurelyHasRoomFor(0)) return;
    if (owner.ElementCount() >= owner.Capacity()) owner.EmptySomeDataWhenRegisterFull(false);
}

template <class TResult>
void TChessboardRegister<TResult>::Insert(uint16_t n, const TChessboardRegisterItem& position, TResult result,
                                          double dValue, uint64_t nValue) {
    InsertSubproblem(n, position, result, dValue, nValue,
                     "Sprzeczna informacja w TChessboardRegister::Insert()");
}

template <class TResult>
void TChessboardRegister<TResult>::InsertDefence(uint16_t n, const TChessboardRegisterItem& position,
                                                 TResult result, double dValue, uint64_t nValue) {
    InsertSubproblem(n, position, result, dValue, nValue,
                     "Sprzeczna informacja w TChessboardRegister::InsertDefence()");
}

template <class TResult>
void TChessboardRegister<TResult>::InsertSubproblem(uint16_t n, const TChessboardRegisterItem& position,
                                                    TResult result, double dValue, uint64_t nValue,
                                                    const char* polishMessage) {
    if (!Accepts(n)) return;
    MakeRoom();
    try {
        StoreSubproblem(n, position, result, dValue, nValue, polishMessage);
    } catch (const ChessException&) {
        throw;
    } catch (const std::exception&) {
        // Nearly always exhausted memory: the result is lost, the store stays as it was.
        Services().Log("Exception caught in method TChessboardRegister::Insert");
        Owner().EmptySomeDataWhenRegisterFull(false);
    }
}

template <class TResult>
void TChessboardRegister<TResult>::StoreSubproblem(uint16_t n, const TChessboardRegisterItem& position,
                                                   TResult result, double dValue, uint64_t nValue,
                                                   const char* polishMessage) {
    std::unique_lock lock(m_subproblemsLock);
    auto [it, bInserted] =
        m_subproblems[n].try_emplace(position, TSubproblemRegisterInfo<TResult>{result, dValue, nValue});
    if (!bInserted) {
        if (it->second.result == result) return;
        throw ChessException(Services().languageId == kPolish
                                 ? polishMessage
                                 : "Incoherent information in TChessboardRegister::Insert()");
    }
    m_nSubproblems.fetch_add(1, std::memory_order_relaxed);
    CountOwnedElements(1);
    if (m_bSubsumption) EraseImpliedResults(n, position, result);
}

// No mate at n implies no mate at every smaller level, mate at n mate at every larger one;
// only the levels with White to move (odd) are looked at.
template <class TResult>
void TChessboardRegister<TResult>::EraseImpliedResults(uint16_t n, const TChessboardRegisterItem& position,
                                                       TResult result) {
    const bool bMate = static_cast<bool>(result);
    auto first = bMate ? m_subproblems.upper_bound(n) : m_subproblems.begin();
    auto last = bMate ? m_subproblems.end() : m_subproblems.lower_bound(n);
    int64_t nErased = 0;
    for (auto level = first; level != last;) {
        if (level->first % 2 == 1) {
            auto it = level->second.find(position);
            if (it != level->second.end() && static_cast<bool>(it->second.result) == bMate) {
                level->second.erase(it);
                ++nErased;
            }
        }
        level = level->second.empty() ? m_subproblems.erase(level) : std::next(level);
    }
    m_nSubproblems.fetch_sub(static_cast<uint32_t>(nErased), std::memory_order_relaxed);
    CountOwnedElements(-nErased);
}

template <class TResult>
std::optional<TSubproblemRegisterInfo<TResult>> TChessboardRegister<TResult>::FindSubproblem(
    uint16_t n, const TChessboardRegisterItem& position) const {
    std::shared_lock lock(m_subproblemsLock);
    auto level = m_subproblems.find(n);
    if (level == m_subproblems.end()) return std::nullopt;
    auto it = level->second.find(position);
    if (it == level->second.end()) return std::nullopt;
    return it->second;
}

template <class TResult>
uint8_t TChessboardRegister<TResult>::LookupSubproblem(uint16_t n,
                                                       const TChessboardRegisterItem& position) const {
    std::optional<TSubproblemRegisterInfo<TResult>> info = FindSubproblem(n, position);
    return info ? static_cast<uint8_t>(info->result) : kSubproblemUnknown;
}

template class TChessboardRegister<bool>;

}  // namespace moremate
