// Move ordering for mate search. It decides the speed: a White move that mates, or a Black
// defence that refutes, found first saves the whole search of its siblings.
#pragma once

#include <atomic>
#include <bit>
#include <cstdint>
#include <vector>

#include "core/movegen.h"

namespace moremate {

// Moves that settled sibling nodes at the same depth of the line, tried first next time.
struct TKillerMoves {
    TMove moves[2]{};
    void Remember(const TMove& m) {
        if (moves[0] == m) return;
        moves[1] = moves[0];
        moves[0] = m;
    }
    int Rank(const TMove& m) const {
        return moves[0] == m && !m.IsNull() ? 2 : (moves[1] == m && !m.IsNull() ? 1 : 0);
    }
};

// How often and how deep each move (from, to) settled a node anywhere in a search: White's moves
// that mated, or Black's defences that refuted. Behind a node's killers, checks and captures it
// orders the moves that are otherwise alike: a piece's move that worked elsewhere in the tree
// mostly works again.
//
// The threads of a search share one: each then orders by what all of them have found, as a
// single thread would. A weight is read and written without a locked instruction, so two threads
// adding at once may lose one addition: an ordering hint can afford that.
class CMoveHistory {
  public:
    void Remember(const TMove& m, int halfMoves) {
        std::atomic<uint64_t>& weight = m_nWeight[m.from][m.to];
        weight.store(weight.load(std::memory_order_relaxed) +
                         static_cast<uint64_t>(halfMoves) * static_cast<uint64_t>(halfMoves),
                     std::memory_order_relaxed);
    }
    // 0 for a move never remembered, else the bit width of its weight: deeper and more frequent
    // successes count more, logarithmically, so that they only break ties of the other scores.
    int Points(const TMove& m) const {
        return std::bit_width(m_nWeight[m.from][m.to].load(std::memory_order_relaxed));
    }

  private:
    std::atomic<uint64_t> m_nWeight[64][64] = {};
};

// The histories of the White and the Black nodes of a search.
struct TMoveHistories {
    CMoveHistory mates;        // White's moves that mated
    CMoveHistory refutations;  // Black's defences that refuted
};

// White's moves: killers, then checks, then captures (most valuable victim first), then moves
// that come near the Black king (the history's, when given, first among those alike). With
// `checksOnly` non-checking moves are dropped (a mate in one is always a check). With
// `fewestRepliesFirst`, moves that leave Black fewer replies rank higher within each group (each
// move is played and Black's replies counted: worth it only far from the end of a line). With
// `checks` given, the checking moves are put there as well (in the order generated), for a
// mate-in-one test that then needs no check test of its own.
void OrderWhiteMoves(const TChessboard& board, TMoveList& list, const TKillerMoves& killers, bool checksOnly,
                     bool fewestRepliesFirst = false, TMoveList* checks = nullptr,
                     const CMoveHistory* history = nullptr);

// Black's defences: killers (refutations of sibling lines), captures, king moves, the rest (the
// history's, when given, first among those alike). With `checksFirst` the checking defences go
// before them all: in a depth-first search a check is the defence that most often refutes (White
// must answer it, and a quiet threat is gone), and when it does not it leaves White few replies to
// search.
void OrderBlackMoves(const TChessboard& board, TMoveList& list, const TKillerMoves& killers, bool checksFirst,
                     const CMoveHistory* history = nullptr);

// Sorts the list stably by descending score (one per move, used up by the sort).
void SortByScore(TMoveList& list, int* score);

// Moves `preferred` of the list to its front, in the order given; the other moves keep their
// order behind them. Preferred moves that the list lacks are passed over.
void PreferMoves(TMoveList& list, const std::vector<TMove>& preferred);

}  // namespace moremate
