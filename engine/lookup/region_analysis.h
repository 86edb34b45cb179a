// The retrograde analysis of one region: its positions are gathered from a start by the piece
// moves of both sides, then settled shortest mate first. White's moves that give the Black king
// more flight squares than it had at the start are left out: a region is the cage White keeps the
// king in, and a mate found inside it is a mate all the same (White's other moves could only give
// shorter ones), while every move of Black's is followed.
//
// Moves out of the region are valued twice over. First cheaply: a mate at once, or the position
// they enter found in a region solved before (or solved now, within the solver's depth). Where
// that leaves White positions without a mate, the region is settled once more with White's moves
// out of them searched a few moves deep by the ordinary search. Black's moves out are never
// searched: there are many, and they rarely lose. Positions that other regions of the same
// class hold already are not gathered again: their distances count as they are. A White position is mate in d
// when one of its moves reaches a Black position mated in d - 1; a Black position is mated in d when every
// move reaches a White position that mates within d, and it has a move. Moves out of the region
// are asked of the solver: for White the best of them counts from the start, for Black they are
// looked at only once every move inside the region is settled.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "engine/search/mate_search.h"
#include "region_solver.h"

namespace moremate {

class CRegionAnalysis {
  public:
    // `known`: the positions of the class's regions solved before (distance in the low byte,
    // region above); those of `region` itself are solved again.
    CRegionAnalysis(CRegionSolver& solver, const TRegionClass& regionClass, int depth,
                    const CRegionTable& known, uint32_t region)
        : m_solver(solver), m_class(regionClass), m_nDepth(depth), m_known(known), m_nRegion(region) {}

    // Gathers the region of `startKey`; false when it has more than `maxNodes` positions.
    bool Gather(uint64_t startKey, uint64_t maxNodes);
    // Settles every position of Keys(), giving Distances().
    void Settle();

    // How many of White's moves deep a move out of the region is searched on the second round.
    static constexpr int kExitSearchMoves = 2;
    // Nodes one such search may take: a move out that needs more is left without a mate.
    static constexpr uint64_t kExitSearchNodes = 1000;

    const std::vector<uint64_t>& Keys() const { return m_keys; }
    const std::vector<uint8_t>& Distances() const { return m_distances; }

  private:
    enum : uint8_t { kHasExit = 1, kNoMove = 2, kInCheck = 4 };
    // An edge to a position of a region solved before: this bit and its distance.
    static constexpr uint32_t kKnownEdge = 0x80000000u;

    // The edge to a position: a node of this region (gathered when new) or a known distance.
    uint32_t EdgeTo(uint64_t key);
    void StartNode(uint32_t node);
    void LinkParents();
    void Push(uint8_t distance, uint32_t node);
    void SettleWhite(uint32_t node, uint8_t distance);
    void SettleBlack(uint32_t node, uint8_t distance);
    void BlackComplete(uint32_t node, uint8_t worst);
    // One round of the retrograde analysis; `deep`: the second, with searched moves out.
    bool SettleRound(bool deep);
    uint8_t BestWhiteExit(uint32_t node, bool deep);
    static bool WorthSearching(const TChessboard& child, const TMove& m);
    uint8_t WorstBlackExit(uint32_t node);
    // The distance of a position entered by a move out of the region.
    uint8_t Entered(const TChessboard& board, bool deep);
    uint8_t SearchedDistance(const TChessboard& board);

    CRegionSolver& m_solver;
    const TRegionClass m_class;
    const int m_nDepth;  // regions solved for moves out of this one: one less
    const CRegionTable& m_known;
    const uint32_t m_nRegion;
    CRegionTable m_index;
    std::vector<uint64_t> m_keys;
    std::vector<uint8_t> m_flags;
    std::vector<uint32_t> m_edgeStart;  // children of node i: m_edges[m_edgeStart[i] .. m_edgeStart[i + 1])
    std::vector<uint32_t> m_edges;
    std::vector<uint32_t> m_parentStart;
    std::vector<uint32_t> m_parents;
    std::vector<uint8_t> m_distances;
    std::vector<uint16_t> m_unsettled;  // Black nodes: children not yet settled
    std::vector<uint8_t> m_worst;       // Black nodes: the longest known child, kNoDistance when one has none
    std::vector<std::vector<uint32_t>> m_buckets;
    std::vector<uint8_t> m_whiteExits;  // White nodes: the best move out found on the first round
    bool m_bDeep = false;
    std::unique_ptr<TMateSearch> m_pSearch;
};

// A quick upper bound of the positions of `board`'s class: the product of the squares each piece
// could ever reach past the pawns, times two sides to move.
uint64_t EstimatedRegionSize(const TChessboard& board);

// Whether the pawns are locked: several on the board, and all but a few of them without a step or
// a capture. Such positions are decided by the pieces' manoeuvres, which regions settle.
bool PawnsLocked(const TChessboard& board);

}  // namespace moremate
