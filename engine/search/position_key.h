// A 128-bit key of a search node: the 64 squares, the castling rights and en passant chance the
// squares alone do not tell, and the half-moves left. Two independent 64-bit mixes make a false
// match between two different nodes so unlikely that a table may trust a full match.
#pragma once

#include <cstdint>

#include "core/chessboard.h"

namespace moremate {

struct TPositionKey {
    uint64_t hash = 0;   // picks the table slot
    uint64_t check = 0;  // confirms the match
    friend bool operator==(const TPositionKey&, const TPositionKey&) = default;
};

// The key of `node` with `node.movesLeft` half-moves left.
TPositionKey PositionKey(const TChessboard& node);

}  // namespace moremate
