#include "region_first_moves.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "choice_text.h"
#include "core/movegen.h"
#include "engine/lookup/region_analysis.h"

namespace moremate {
namespace {

// The regions after a first move are solved this deep: the moves out of them, and the regions
// those enter, followed as for a White node of the searches.
constexpr int kFirstMoveDepth = 1;

struct TFirstMove {
    TMove move;
    TChessboard child;
    uint64_t size;  // the quick bound of the child's region
    bool leaves;    // a pawn move or a capture: the child is in another class than the root
};

// The first moves into regions, those leaving the root's class first, smallest regions first: the
// quiet ones all lead into the root's own region, which one solve settles for all of them.
std::vector<TFirstMove> Candidates(const TChessboard& root) {
    TMoveList moves;
    GenerateLegalMoves(root, moves);
    std::vector<TFirstMove> candidates;
    for (const TMove& m : moves) {
        TFirstMove c{m, {}, 0, false};
        PlayMove(root, m, c.child);
        if (!RegionEligible(c.child)) continue;
        c.size = EstimatedRegionSize(c.child);
        c.leaves = TypeOf(root.squares[m.from]) == kPawn || root.squares[m.to] != kEmpty;
        candidates.push_back(c);
    }
    std::stable_sort(candidates.begin(), candidates.end(), [](const TFirstMove& a, const TFirstMove& b) {
        return a.leaves != b.leaves ? a.leaves : a.size < b.size;
    });
    return candidates;
}

}  // namespace

bool ReadRegionMode(const std::string& text, TRegionMode& mode) {
    return ReadChoice(text, {{"auto", TRegionMode::Auto}, {"off", TRegionMode::Off}, {"on", TRegionMode::On}},
                      mode);
}

bool RegionsDecide(const TChessboard& root) {
    return RegionEligible(root) && PawnsLocked(root) &&
           EstimatedRegionSize(root) <= TRegionLimits{}.maxEstimate;
}

std::vector<TMove> RegionFirstMoves(const TChessboard& root, CRegionSolver& solver, int64_t budgetMs,
                                    size_t limit) {
    if (!root.WhiteToMove() || root.movesLeft < 2) return {};
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(budgetMs);
    solver.SetDeadline(deadline);
    std::vector<std::pair<uint8_t, TMove>> proven;
    for (const TFirstMove& c : Candidates(root)) {
        if (proven.size() >= limit || std::chrono::steady_clock::now() >= deadline) break;
        const uint8_t d = solver.SolvedDistance(c.child, c.child.movesLeft, kFirstMoveDepth);
        if (Fits(c.child, d, c.child.movesLeft)) proven.emplace_back(d, c.move);
    }
    solver.SetDeadline(std::chrono::steady_clock::time_point::max());
    std::stable_sort(proven.begin(), proven.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<TMove> first;
    for (const auto& [d, m] : proven) first.push_back(m);
    return first;
}

}  // namespace moremate
