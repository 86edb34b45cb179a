// Perft: the number of legal move sequences of a given length, the standard check of a generator.
#pragma once

#include <cstdint>
#include <vector>

#include "chessboard.h"

namespace moremate {

// Counts leaf positions `depth` half-moves below `board`; the last ply is counted, not played.
uint64_t Perft(const TChessboard& board, int depth);

struct TPerftDivision {
    TMove move;
    uint64_t nodes;
};
// Perft split by root move, in generation order.
std::vector<TPerftDivision> PerftDivide(const TChessboard& board, int depth);

}  // namespace moremate
