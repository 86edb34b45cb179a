// What the search asks of the run's registers: settled results of positions by the number of
// half-moves left. The run binds it to the temporary register of the pass's heuristic set.
// Positions are keyed by their squares alone; the board brings the hash it keeps of them, and a
// child not yet played brings its squares and hash worked out from the move (SquaresAfterMove).
#pragma once

#include <cstdint>

#include "core/chessboard.h"
#include "engine/state/search_result.h"
#include "registers/register_entry.h"

namespace moremate {

class CPositionStore {
  public:
    virtual ~CPositionStore() = default;
    // kMate when a mate within `halfMoves` is known, kNoMate when none is, kDoubtful when the
    // line was found doubtful under the pass's heuristics, else kUnknownResult.
    virtual uint8_t LookupSquares(const TChessboardRegisterItem& squares, uint32_t hash, int halfMoves) = 0;
    uint8_t Lookup(const TChessboard& position, int halfMoves) {
        return LookupSquares(RegisterItemOf(position), position.squaresHash, halfMoves);
    }
    // Records a settled result (kMate, kNoMate or kDoubtful) for `halfMoves`.
    virtual void Store(const TChessboard& position, int halfMoves, uint8_t result) = 0;
    // Starts loading what a look-up of the squares of `hash` with `halfMoves` left will read. The
    // first step, PrefetchBucket, waits for nothing; Prefetch, given some work later, loads the rest.
    virtual void PrefetchBucket(uint32_t hash, int halfMoves) { (void)hash, (void)halfMoves; }
    virtual void Prefetch(uint32_t hash, int halfMoves) { (void)hash, (void)halfMoves; }
    // The same for a position with its own half-moves left.
    void PrefetchBucket(const TChessboard& position) {
        PrefetchBucket(position.squaresHash, position.movesLeft);
    }
    void Prefetch(const TChessboard& position) { Prefetch(position.squaresHash, position.movesLeft); }
};

}  // namespace moremate
