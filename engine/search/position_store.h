// What the search asks of the run's registers: settled results of positions by the number of
// half-moves left. The run binds it to the temporary register of the pass's heuristic set.
// Positions are keyed by their squares alone; the board brings the hash it keeps of them.
#pragma once

#include <cstdint>

#include "core/chessboard.h"
#include "engine/state/search_result.h"

namespace moremate {

class CPositionStore {
  public:
    virtual ~CPositionStore() = default;
    // kMate when a mate within `halfMoves` is known, kNoMate when none is, kDoubtful when the
    // line was found doubtful under the pass's heuristics, else kUnknownResult.
    virtual uint8_t Lookup(const TChessboard& position, int halfMoves) = 0;
    // Records a settled result (kMate, kNoMate or kDoubtful) for `halfMoves`.
    virtual void Store(const TChessboard& position, int halfMoves, uint8_t result) = 0;
    // Starts loading what a Lookup of the position with its own half-moves left will read. The
    // first step, PrefetchBucket, waits for nothing; Prefetch, given some work later, loads the rest.
    virtual void PrefetchBucket(const TChessboard& position) { (void)position; }
    virtual void Prefetch(const TChessboard& position) { (void)position; }
};

}  // namespace moremate
