// TGlobalRegister: the precalculated data of one position type. The index space is doubled: the
// first half holds positions with White to move (stored v: White mates in v moves), the second
// half the same placements with Black to move (stored s: White mates after s - 1 more White
// moves; s = 1 means Black is mated). 0 is "no mate" in both halves.
#pragma once

#include <cstdint>
#include <memory>

#include "core/chessboard.h"
#include "precalc/global/global_storage.h"
#include "precalc/types/position_type.h"

namespace moremate {

inline constexpr const char* kUnknownStorageText =
    "Unknown random access buffer in TGlobalRegister::IsMateByIndex()";
inline constexpr int kStoredNoMate = -1;
inline constexpr int kStoredUnknown = -2;

class TGlobalRegister {
  public:
    TGlobalRegister(TPrecalcType type, std::unique_ptr<CGlobalStorage> storage)
        : m_type(std::move(type)), m_pStorage(std::move(storage)) {}

    const TPrecalcType& Type() const { return m_type; }
    const CGlobalStorage& Storage() const { return *m_pStorage; }
    size_t MemoryBytes() const { return m_pStorage ? m_pStorage->MemoryBytes() : 0; }

    // The position's index in the doubled space; the side to move follows its half-moves.
    uint64_t IndexOf(const TChessboard& position) const;
    // 0 no mate, kUnknownMate unknown, else 2v - 1 for a stored v (the 2-bit form: its raw bits).
    uint16_t IsMateByIndex(const TChessboard& position) const;
    void SetMateByIndex(uint64_t nIndex, uint16_t nValue);
    // Half-moves to the mate from the position with best play, kStoredNoMate or kStoredUnknown.
    // Positions with castling rights or an en passant capture are not covered: unknown.
    int HalfMovesToMate(const TChessboard& position) const;
    // The same from an index of the doubled space.
    int HalfMovesAtIndex(uint64_t nIndex) const;

  private:
    TPrecalcType m_type;
    std::unique_ptr<CGlobalStorage> m_pStorage;
};

// Whether a position is one the data covers: no castling right and no en passant capture.
bool PrecalcCovers(const TChessboard& position);

}  // namespace moremate
