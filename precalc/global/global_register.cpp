#include "global_register.h"

#include <stdexcept>

#include "core/movegen.h"

namespace moremate {
namespace {

bool EnPassantPossible(const TChessboard& b) {
    if (b.epSquare >= 64) return false;
    const uint8_t us = b.ToMove();
    const int victim = us == kWhite ? b.epSquare - 8 : b.epSquare + 8;
    for (const int df : {-1, 1}) {
        const int file = FileOf(victim) + df;
        if (file >= 0 && file < 8 && b.squares[MakeSquare(file, RankOf(victim))] == (us | kPawn)) return true;
    }
    return false;
}

}  // namespace

bool PrecalcCovers(const TChessboard& position) {
    return CastlingRights(position) == 0 && !EnPassantPossible(position);
}

uint64_t TGlobalRegister::IndexOf(const TChessboard& position) const {
    return m_type.IndexOf(position.squares) + (position.WhiteToMove() ? 0 : m_type.PlacementCount());
}

uint16_t TGlobalRegister::IsMateByIndex(const TChessboard& position) const {
    if (!m_pStorage) throw std::runtime_error(kUnknownStorageText);
    return m_pStorage->MateCode(IndexOf(position));
}

void TGlobalRegister::SetMateByIndex(uint64_t nIndex, uint16_t nValue) {
    if (!m_pStorage) throw std::runtime_error(kUnknownStorageText);
    m_pStorage->Set(nIndex, nValue);
}

int TGlobalRegister::HalfMovesAtIndex(uint64_t nIndex) const {
    if (!m_pStorage) throw std::runtime_error(kUnknownStorageText);
    const bool white = nIndex < m_type.PlacementCount();
    uint16_t code = m_pStorage->MateCode(nIndex);
    if (code == kUnknownMate) return kStoredUnknown;
    if (code == 0) return kStoredNoMate;
    if (m_pStorage->Form() == TStorageForm::kTwoBit) code = static_cast<uint16_t>(2 * code - 1);
    return white ? code : code - 1;
}

int TGlobalRegister::HalfMovesToMate(const TChessboard& position) const {
    if (!PrecalcCovers(position)) return kStoredUnknown;
    return HalfMovesAtIndex(IndexOf(position));
}

}  // namespace moremate
