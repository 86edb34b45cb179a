// FindMateByGlobalRegister: whether the side to move mates within n moves, move by move from the
// precalculated data of the positions after each move.
#pragma once

#include <cstdint>

#include "core/chessboard.h"
#include "precalc/global/global_registers.h"

namespace moremate {

inline constexpr const char* kMovesCannotBeOneText = "m_nMoves cannot be ==1 in FindMateByGlobalRegister";

// Moves from a square of `excludedFrom` (a bit per square) or to one of `excludedTo` are not
// tried; nor are moves after which the data covers nothing (an en passant capture open).
bool FindMateByGlobalRegister(TGlobalRegisters& registers, const TChessboard& position, int n,
                              uint64_t excludedFrom = 0, uint64_t excludedTo = 0);

}  // namespace moremate
