// Settles positions by regions (see region_codec.h). A region is solved as a whole by retrograde
// analysis: its mated Black positions first, then every position whose distance to mate follows
// from positions already settled, shortest first. Moves that leave the region (captures, pawn
// moves) lead into other classes, which are solved the same way when they are small, or looked at
// one move deep when they are not. What the solver settles is proven: a distance is the length of
// a forced mate, counted in White's moves; a position without one may still have a mate that the
// solver did not see through a move leaving the region, so it proves nothing against a mate.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <shared_mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "engine/search/search_hooks.h"
#include "region_codec.h"
#include "region_table.h"

namespace moremate {

inline constexpr uint8_t kNoDistance = 255;

struct TRegionLimits {
    uint32_t maxNodes = 1u << 19;       // positions of one region
    uint64_t maxEstimate = 1ULL << 23;  // the quick upper bound of a class's size
    uint64_t totalNodes = 24'000'000;   // positions of all regions of the solver
    // How many regions deep a move out of a region may be followed by solving the region it
    // enters. A region is solved with no depth first (moves out of it count only when they mate
    // at once or enter a region solved before), and again one deeper while its position has no
    // mate that fits and the room lasts.
    int maxDepth = 1;
};

struct TRegionStats {
    uint64_t regions = 0;   // regions solved
    uint64_t nodes = 0;     // their positions
    uint64_t tooLarge = 0;  // classes found too large
    uint64_t settled = 0;   // positions settled with a distance
};

class CRegionSolver {
  public:
    // `stop` (may be null) breaks a solve off; its region is then left unsolved.
    CRegionSolver(const TRegionLimits& limits, const std::atomic<bool>* stop)
        : m_limits(limits), m_pStop(stop) {}

    // The distance to mate of `board` in White's moves (for Black to move: the moves White needs
    // after any reply, 0 when mated), or kNoDistance. With `solve`, the region is solved (again,
    // deeper) until a mate within `halfMoves` is found, the depth is exhausted or the room is used
    // up; without, only what is known is told. Safe to call from several threads.
    uint8_t Distance(const TChessboard& board, bool solve, int halfMoves);
    // The same, solving up to `maxDepth` regions deep whoever is to move (a negative depth only
    // looks up): for the positions after a run's first moves, worth more than the searches' nodes.
    uint8_t SolvedDistance(const TChessboard& board, int halfMoves, int maxDepth);
    // Solves break off at `deadline` as they do at a stop. Set while no other thread asks.
    void SetDeadline(std::chrono::steady_clock::time_point deadline) { m_deadline = deadline; }

    TRegionStats Stats() const;

  private:
    struct TRegion {
        uint64_t start = 0;  // the position it was gathered from
        int depth = 0;       // the depth it was solved with
    };
    struct TClassEntry {
        // Every position of the class's regions: its distance in the low byte, its region above.
        CRegionTable positions;
        std::vector<TRegion> regions;
        bool tooLarge = false;
    };
    struct TStopped {};
    // For the searches of moves out of a region, made while the solver's lock is held: the
    // regions solved so far settle their nodes, no region is solved.
    class CKnownRegions : public CGlobalRegisterHook {
      public:
        explicit CKnownRegions(CRegionSolver& solver) : m_solver(solver) {}
        bool Settle(const TChessboard& node, uint8_t& result) override;

      private:
        CRegionSolver& m_solver;
    };

    // What the class's table holds for a position: its distance, its region and the depth that
    // region was solved with.
    struct THeld {
        bool found = false;
        uint8_t distance = kNoDistance;
        int depth = 0;
        uint32_t region = 0;
    };
    THeld Held(const TRegionPosition& position) const;
    // The distance by a region solved with at least `depth`, solving it when needed; a negative
    // depth only looks up.
    uint8_t DistanceLocked(const TChessboard& board, int depth);
    uint8_t DistanceLocked(const TChessboard& board, const TRegionPosition& position, int depth);
    int MaxDepth(const TChessboard& board) const;
    bool Solve(const TRegionPosition& position, TClassEntry& entry, uint32_t region, int depth);
    void PollStop();

    friend class CRegionAnalysis;

    const TRegionLimits m_limits;
    const std::atomic<bool>* m_pStop;
    std::chrono::steady_clock::time_point m_deadline = std::chrono::steady_clock::time_point::max();
    mutable std::shared_mutex m_mutex;
    std::unordered_map<TRegionClass, TClassEntry, TRegionClassHash> m_classes;
    TRegionStats m_stats;
    bool m_bRoomSpent = false;
    CKnownRegions m_lookup{*this};
};

// The figures for the register statistics: "Regions: ..." and a line end.
std::string RegionStatsText(const TRegionStats& stats);

// Whether a mate of `distance` White moves from `board` fits within `halfMoves`.
bool Fits(const TChessboard& board, uint8_t distance, int halfMoves);

// Whether a board may belong to a region: no castling rights, no en passant capture, few pieces.
bool RegionEligible(const TChessboard& board);

}  // namespace moremate
