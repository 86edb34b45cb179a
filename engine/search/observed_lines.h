// Observer levels: each main search thread publishes the White moves it is analysing on the first
// plies of its line (its first move, then the White moves below it), and the progress display
// reads them. A thread writes one slot of its own with relaxed atomic stores, only at those
// shallow White nodes; the reader may see a line while it changes, which a display can bear.
#pragma once

#include <atomic>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "core/chessboard.h"

namespace moremate {

inline constexpr size_t kMaxObservedMoves = 16;

// A thread's line: White moves, each packed with its piece and capture; 0 ends the line.
struct alignas(64) TObservedSlot {
    std::atomic<uint32_t> moves[kMaxObservedMoves] = {};
};

struct TObservedMove {
    TMove move;
    Piece piece = kEmpty;
    bool captures = false;
};

class CObservedLines {
  public:
    // `threads` slots of `moves` White moves each (at most kMaxObservedMoves).
    CObservedLines(size_t threads, size_t moves);
    size_t Moves() const { return m_nMoves; }
    // The slot of main thread `thread`, or null beyond the slots.
    TObservedSlot* Slot(size_t thread);
    // The lines being analysed, one per thread that has one.
    std::vector<std::vector<TObservedMove>> Lines() const;
    // "Observed: 1.Qb6-f6 2.Qf6-d8 | 1.Kd2-c3", or empty when no thread has a line.
    std::string Text() const;

  private:
    size_t m_nThreads;
    size_t m_nMoves;
    std::unique_ptr<TObservedSlot[]> m_slots;
};

// The publishing side, one per search: White nodes at plies `first`, `first` + 2, ... write the
// line's second, third, ... move; every other node costs one comparison of its ply.
class CObservedLine {
  public:
    // `slot` null: nothing is published.
    void Attach(TObservedSlot* slot, size_t moves);
    // The line's first move, played in `root`; the rest of the line is cleared.
    void FirstMove(const TChessboard& root, const TMove& move);
    // The White nodes of the search that starts now at `ply` are the line's second move's.
    void From(int ply);
    // The thread has no line any more.
    void Clear();

    void AtWhiteMove(int ply, const TChessboard& node, const TMove& move) {
        if (ply < m_nEndPly) Publish(static_cast<size_t>((ply - m_nFirstPly) / 2 + 1), node, move);
    }

  private:
    void Publish(size_t index, const TChessboard& node, const TMove& move);

    TObservedSlot* m_pSlot = nullptr;
    size_t m_nMoves = 0;
    int m_nFirstPly = 0;
    int m_nEndPly = INT_MIN;
};

}  // namespace moremate
