// A node's children played ahead of their search.
#pragma once

#include "core/chessboard.h"
#include "core/movegen.h"
#include "position_store.h"

namespace moremate {

// What a search that needs nothing more of a child when it is played passes.
struct TPlayedNothing {
    void operator()(int, const TChessboard&) const {}
};

// With a store given, plays the moves of a list ahead of the search, so that the register's
// memory accesses overlap the search: while child i is searched, child i + 1 has its bucket and
// entries on the way into the cache, and children i + 2 and i + 3, already on their boards, their
// bucket words. Near the end of a line a child is searched in a few hundred instructions (mostly
// a register hit), too few for a bucket word asked for only one child ahead.
// Without one, each child is played when it is asked for: a child played ahead is wasted when
// its sibling settles the node, as the first defence tried mostly does near the end of a line.
// `onPlayed(i, child)` is called as each child is played, in the order of the list, so that a
// search can ask for more of a child's memory as early.
template <class FOnPlayed = TPlayedNothing>
class CChildrenAhead {
  public:
    CChildrenAhead(const TChessboard& node, const TMoveList& moves, CPositionStore* store,
                   FOnPlayed onPlayed = {})
        : m_node(node), m_moves(moves), m_pStore(store), m_onPlayed(onPlayed) {
        for (int i = 0; m_pStore && i < kPlayedAhead && i < moves.count; ++i) Play(i);
    }
    // For i = 0, 1, 2, ... in turn.
    const TChessboard& Child(int i) {
        if (!m_pStore) {
            Play(i);
            return m_children[i % kRing].board;
        }
        if (i + kPlayedAhead < m_moves.count) Play(i + kPlayedAhead);
        if (i + 1 < m_moves.count) {
            const TChessboard& next = m_children[(i + 1) % kRing].board;
            m_pStore->Prefetch(next);
        }
        return m_children[i % kRing].board;
    }

  private:
    void Play(int i) {
        TChessboard& child = m_children[i % kRing].board;
        PlayMove(m_node, m_moves.moves[i], child);
        if (m_pStore) m_pStore->PrefetchBucket(child);
        m_onPlayed(i, child);
    }

    const TChessboard& m_node;
    const TMoveList& m_moves;
    CPositionStore* m_pStore;
    FOnPlayed m_onPlayed;
    static constexpr int kPlayedAhead = 3;
    static constexpr int kRing = kPlayedAhead + 1;
    TBoardRoom m_children[kRing];
};

}  // namespace moremate
