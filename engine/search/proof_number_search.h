// Depth-first proof-number search (df-pn) for "White mates within the half-moves left".
// White nodes are OR nodes, Black nodes AND nodes; a node is a position with its half-moves
// left, so a line can never come back to a node (the count falls at every move) and no result
// depends on the line that reached it: repetitions need no special care, and every settled node
// is a fact of its position.
//
// The search goes where the tree is thinnest. A fresh Black node costs as many proofs as Black
// has replies, so White's moves that leave Black the fewest replies (checks, above all) are
// tried first; a White node with one move left is settled at once by a mate-in-one test, and a
// node with at most four half-moves left, once it is expanded, by the ordinary search (its own
// repetitions are failures of White's, which is sound: a mate through a repetition has a shorter
// one). Thresholds widen by the 1 + epsilon rule so that the search does not thrash between
// siblings of similar cost.
//
// Settled nodes are shared with the temporary register both ways: a fact found there settles a
// node without search, and a node settled here is stored there (mate within n, or none).
#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "mate_search.h"
#include "proof_number_table.h"

namespace moremate {

// Thrown through the proof-number search when its own budget (time or nodes) is used up.
struct TProofNumberBudgetSpent {};

struct TProofNumberStats {
    uint64_t nodes = 0;         // nodes expanded
    uint64_t evaluated = 0;     // fresh nodes given their first numbers
    uint64_t tableHits = 0;     // fresh nodes whose numbers came from the table
    uint64_t registerHits = 0;  // fresh nodes settled by the temporary register
    uint64_t precalcHits = 0;   // fresh nodes settled by precalculated data
    uint64_t mateInOneTests = 0;
    uint64_t shortSearches = 0;     // nodes near the end settled by the ordinary search
    uint64_t shortSearchNodes = 0;  // the nodes those searches took
    uint64_t proven = 0;            // nodes proven (mate) and stored
    uint64_t disproven = 0;         // nodes disproven (no mate) and stored
    TProofNumberStats& operator+=(const TProofNumberStats& o);
};

class TProofNumberSearch {
  public:
    // `budgetSpent` (may be null) ends the search with TProofNumberBudgetSpent when raised; the
    // environment's stop flag ends it with TSearchStopped.
    TProofNumberSearch(const TSearchEnvironment& env, CProofNumberTable& table,
                       const std::atomic<bool>* budgetSpent);

    // Settles `node` (either side to move): kMate, kNoMate. Throws when a budget runs out.
    uint8_t Prove(const TChessboard& node);
    // The numbers of `node` as the table and the register know them now (a fresh node's first
    // numbers when neither does).
    TProofNumbers Numbers(const TChessboard& node);

    // A move of White's that mates within the half-moves left of a node that the ordinary search
    // settles (see above); the null move when there is none or the node is farther from the end.
    TMove ShortMatingMove(const TChessboard& node);
    // The length of `node`'s mate in White's moves as precalculated data knows it, or -1.
    int KnownMateDistance(const TChessboard& node) const;

    const TProofNumberStats& Stats() const { return m_stats; }

  private:
    struct TChild {
        TMove move;
        TPositionKey key;
        TProofNumbers numbers;
    };

    void Expand(const TChessboard& node, const TPositionKey& key, uint32_t thpn, uint32_t thdn,
                TProofNumbers& numbers);
    // Fills the children of `node` into m_children from `first` on; false when one of them
    // settles the node at once (a proof of an OR node, a disproof of an AND node).
    // A node near the end, settled by the ordinary search; false when it is farther away.
    bool SettledByShortSearch(const TChessboard& node, TProofNumbers& numbers);
    bool AddChildren(const TChessboard& node, size_t first, TProofNumbers& settled);
    TProofNumbers Evaluate(const TChessboard& child, const TPositionKey& key);
    TProofNumbers FreshNumbers(const TChessboard& child);
    void Record(const TChessboard& node, const TPositionKey& key, const TProofNumbers& numbers,
                uint64_t work);
    void CountNode();

    TSearchEnvironment m_env;
    CProofNumberTable& m_table;
    const std::atomic<bool>* m_pBudgetSpent;
    TMateSearch m_short;
    std::vector<TChild> m_children;  // the children of every node on the line, one block each
    TProofNumberStats m_stats;
};

}  // namespace moremate
