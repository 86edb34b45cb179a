// The search's extension points: the special heuristics in force and the precalculated endgame
// data. Both are asked at every node, so they must be cheap when they have nothing to say.
#pragma once

#include <cstdint>

#include "core/chessboard.h"
#include "core/movegen.h"

namespace moremate {

class CHeuristicHook {
  public:
    virtual ~CHeuristicHook() = default;
    // Asked after each move: 0 lets the line go on, otherwise the bit of the heuristic that
    // makes the line "mate doubtful". Never consulted for a move that mates at once.
    virtual uint32_t Check(const TChessboard& after) = 0;
    // Move filters of the set (only checks and threats, skipped passive moves, ...): may drop
    // moves from the legal moves of `node` before they are sorted. Returns the bit of the
    // heuristic that dropped any, else 0; a node that lost moves can no longer be proven "no mate".
    virtual uint32_t FilterMoves(const TChessboard& node, TMoveList& moves) {
        (void)node;
        (void)moves;
        return 0;
    }
};

class CGlobalRegisterHook {
  public:
    virtual ~CGlobalRegisterHook() = default;
    // Settles a node from precalculated data: true with `result` set (kMate or kNoMate), or
    // false when the position is not of a precalculated type.
    virtual bool Settle(const TChessboard& node, uint8_t& result) = 0;
    // The number of White moves of the shortest mate the data knows for `node` (for Black to move:
    // after Black's longest defence), or -1: main lines follow it.
    virtual int MateDistance(const TChessboard& /*node*/) { return -1; }
};

class CSchedulerHook {
  public:
    virtual ~CSchedulerHook() = default;
    // A White node with its moves sorted, before they are searched: may lend a free thread to a
    // move sorted as almost the best. Must be cheap when it has nothing to do.
    virtual void AtWhiteNode(const TChessboard& node, const TMoveList& moves) = 0;
};

}  // namespace moremate
