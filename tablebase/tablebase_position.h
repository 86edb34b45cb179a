// Which positions the tablebase is asked about, and how: three to seven pieces, no castling right
// and no en passant square (the service's tables have neither, and the cache's file names do not
// tell them apart), as a FEN with the side to move.
#pragma once

#include <string>

#include "core/chessboard.h"

namespace moremate {

inline constexpr int kMinTablebasePieces = 3;
inline constexpr int kMaxTablebasePieces = 7;

int PieceCount(const TChessboard& board);

// An empty text when the position may be asked; else why not.
std::string WhyNotAskable(const TChessboard& board);

// "8/8/... w - - 0 1"
std::string TablebaseFen(const TChessboard& board);

// The position's identifier as text, with "_b" when Black is to move (the identifier itself does
// not tell the side).
std::string CacheName(const TChessboard& board);

}  // namespace moremate
