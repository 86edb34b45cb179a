// The look-up thread of a solving run: asks the online tablebase about the positions of 3 to 7
// pieces with White to move on the first levels of White's moves (level 1 is the problem's own
// position, level 2 those after White's and Black's first moves, ...) and writes what the answers
// prove into the run's register. The search never waits for it: a fact that arrives in time saves
// search, one that does not changes nothing.
#pragma once

#include <array>
#include <atomic>
#include <set>

#include "core/chessboard.h"
#include "core/pooled_thread.h"
#include "engine/search/position_store.h"
#include "tablebase/lichess.h"

namespace moremate {

class CTablebaseLookup {
  public:
    // Starts at once; `levels` below 1 asks nothing.
    CTablebaseLookup(CLiChess& liChess, CPositionStore& store, const TChessboard& root, int levels);
    ~CTablebaseLookup();
    CTablebaseLookup(const CTablebaseLookup&) = delete;
    CTablebaseLookup& operator=(const CTablebaseLookup&) = delete;

    // Asks nothing more (a query under way is broken off) and waits for the thread.
    void Stop();
    // Waits until every position has been asked.
    void Wait();

    int Answers() const { return m_nAnswers; }  // answers that fit their positions, cached or not
    int Facts() const { return m_nFacts; }

  private:
    // Whether `node` on `level` may still be asked or lead to positions that may.
    bool WorthVisiting(const TChessboard& node, int level) const;
    void Visit(const TChessboard& node, int level);
    void Ask(const TChessboard& node);

    CLiChess& m_liChess;
    CPositionStore& m_store;
    const TChessboard m_root;
    const int m_nLevels;
    std::atomic<bool> m_bStop{false};
    std::atomic<int> m_nAnswers{0};
    std::atomic<int> m_nFacts{0};
    std::set<std::array<uint8_t, 64>> m_visited;  // the thread's own
    CPooledThread m_thread;
};

}  // namespace moremate
