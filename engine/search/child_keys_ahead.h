// The register keys of a node's children, worked out from the moves ahead of their look-ups.
#pragma once

#include "core/movegen.h"
#include "core/squares_after.h"
#include "position_store.h"

namespace moremate {

// A child as the register keys it, before (and mostly instead of) playing its move.
struct TChildKey {
    TChessboardRegisterItem squares;
    uint32_t hash = 0;
    bool stored = false;  // whether the register holds such positions (SquaresTellAll)
};

// Near the end of a line most children of a White node are settled by the register. Their keys
// come from the moves alone, three ahead like CChildrenAhead's boards: key i + 3 is made and its
// bucket word asked for as key i is handed out, and key i + 1 has the rest of its memory asked
// for. A child is played only when the register does not know it.
class CChildKeysAhead {
  public:
    CChildKeysAhead(const TChessboard& node, const TMoveList& moves, CPositionStore& store)
        : m_node(node), m_moves(moves), m_store(store), m_nHome(HomeCastlingRights(node.squares)) {
        for (int i = 0; i < kAhead && i < moves.count; ++i) Make(i);
    }
    // For i = 0, 1, 2, ... in turn.
    const TChildKey& Key(int i) {
        if (i + kAhead < m_moves.count) Make(i + kAhead);
        if (i + 1 < m_moves.count && m_keys[(i + 1) % kRing].stored)
            m_store.Prefetch(m_keys[(i + 1) % kRing].hash, m_node.movesLeft - 1);
        return m_keys[i % kRing];
    }

  private:
    void Make(int i) {
        TChildKey& key = m_keys[i % kRing];
        const TSquaresAfter after = SquaresAfterMove(m_node, m_nHome, m_moves.moves[i], key.squares.squares);
        key.hash = after.hash;
        key.stored = after.tellsAll;
        if (key.stored) m_store.PrefetchBucket(key.hash, m_node.movesLeft - 1);
    }

    const TChessboard& m_node;
    const TMoveList& m_moves;
    CPositionStore& m_store;
    const uint8_t m_nHome;  // the node's castling rights by its pieces at home
    static constexpr int kAhead = 3;
    static constexpr int kRing = kAhead + 1;
    // Left unmade until each key is written: clearing 256 bytes per node costs more than it saves.
    union {
        TChildKey m_keys[kRing];
    };
};

}  // namespace moremate
