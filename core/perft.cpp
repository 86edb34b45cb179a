#include "perft.h"

#include "movegen.h"

namespace moremate {

uint64_t Perft(const TChessboard& board, int depth) {
    if (depth <= 0) return 1;
    if (depth == 1) return static_cast<uint64_t>(CountLegalMoves(board));
    TMoveList list;
    GenerateLegalMoves(board, list);
    uint64_t total = 0;
    TBoardRoom child;
    for (const TMove& m : list) {
        PlayMove(board, m, child.board);
        total += Perft(child.board, depth - 1);
    }
    return total;
}

std::vector<TPerftDivision> PerftDivide(const TChessboard& board, int depth) {
    TMoveList list;
    GenerateLegalMoves(board, list);
    std::vector<TPerftDivision> result;
    TChessboard child;
    for (const TMove& m : list) {
        PlayMove(board, m, child);
        result.push_back({m, Perft(child, depth - 1)});
    }
    return result;
}

}  // namespace moremate
