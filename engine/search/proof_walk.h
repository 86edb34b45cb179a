// Proof, not belief: before a key of the proof-number search is reported, its proof tree is walked
// again from the key down to the mates. At White nodes the walk follows a move that the search
// holds as proven; at Black nodes it walks every reply; the leaves are mates played out on the
// board. Where the table has lost a White node's proof (a small subtree collected, or replaced),
// the proof-number search proves that node again, and the walk goes on through the new proof.
// The walk also gives the key's main line: Black's longest defence in the proof, White's move of
// the proof. Where precalculated data or regions know a node's mate (both are retrograde analyses
// of every position they hold), they are trusted for its subtree: the walk follows their quickest
// mate against Black's longest defence down to the mate on the board, one line only.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "proof_number_search.h"

namespace moremate {

class CProofWalk {
  public:
    explicit CProofWalk(TProofNumberSearch& proofs) : m_proofs(proofs) {}

    // Whether `node` (either side to move) is a forced mate within its half-moves.
    bool Holds(const TChessboard& node) { return Length(node) >= 0; }
    // The line of the proof from `root` after `key` (which must hold): key, Black's reply, ...
    std::vector<TMove> Line(const TChessboard& root, const TMove& key);
    uint64_t Nodes() const { return m_nNodes; }

  private:
    struct TStep {
        int16_t length = -1;  // half-moves to mate in the proof; -1: no proof
        TMove move;           // White's move of the proof, or Black's longest defence
    };

    int Length(const TChessboard& node);
    TStep KnownStep(const TChessboard& node);
    TMove MoveToKnownMate(const TChessboard& node, const TMoveList& moves, int distance);
    TMove LatestKnownDefence(const TChessboard& node, const TMoveList& moves);
    TStep StepBy(const TChessboard& node, const TMove& move);
    TStep WhiteStep(const TChessboard& node);
    TStep ProvenMove(const TChessboard& node, const TMoveList& moves);
    void OrderByKnownDistance(const TChessboard& node, TMoveList& moves);
    TStep BlackStep(const TChessboard& node);

    TProofNumberSearch& m_proofs;
    std::unordered_map<uint64_t, TStep> m_memo;  // by the node's key (hash and check folded)
    uint64_t m_nNodes = 0;
};

}  // namespace moremate
