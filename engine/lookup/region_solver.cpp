#include "region_solver.h"

#include <algorithm>
#include <mutex>

#include <fmt/format.h>

#include "core/movegen.h"
#include "engine/search/mate_search.h"
#include "engine/state/search_result.h"
#include "region_analysis.h"

namespace moremate {
bool Fits(const TChessboard& board, uint8_t distance, int halfMoves) {
    if (distance == kNoDistance) return false;
    return (board.WhiteToMove() ? 2 * distance - 1 : 2 * distance) <= halfMoves;
}

bool RegionEligible(const TChessboard& board) {
    const int pieces = 2 + board.whiteQueens + board.blackQueens + board.whiteRooks + board.blackRooks +
                       board.whiteBishops + board.blackBishops + board.whiteKnights + board.blackKnights;
    return pieces <= kMaxRegionPieces && CastlingRights(board) == 0 && !EnPassantPossible(board);
}

uint8_t CRegionSolver::Distance(const TChessboard& board, bool solve, int halfMoves) {
    if (!solve) return SolvedDistance(board, halfMoves, -1);
    return SolvedDistance(board, halfMoves, MaxDepth(board));
}

uint8_t CRegionSolver::SolvedDistance(const TChessboard& board, int halfMoves, int maxDepth) {
    if (!RegionEligible(board)) return kNoDistance;
    TRegionPosition position;
    if (!ReadRegionPosition(board, position)) return kNoDistance;
    THeld held;
    {
        std::shared_lock lock(m_mutex);
        held = Held(position);
    }
    if (held.found && (Fits(board, held.distance, halfMoves) || held.depth >= maxDepth)) return held.distance;
    if (!held.found && maxDepth < 0) return kNoDistance;
    std::unique_lock lock(m_mutex);
    uint8_t d = kNoDistance;
    try {
        for (int depth = held.found ? held.depth + 1 : 0; depth <= maxDepth && !m_bRoomSpent; ++depth) {
            d = DistanceLocked(board, position, depth);
            if (Fits(board, d, halfMoves)) break;
        }
    } catch (const TStopped&) {
    }
    return d;
}

CRegionSolver::THeld CRegionSolver::Held(const TRegionPosition& position) const {
    const auto entry = m_classes.find(position.regionClass);
    if (entry == m_classes.end()) return {};
    const uint32_t held = entry->second.positions.Find(position.key);
    if (held == CRegionTable::kAbsent) return {};
    return {true, static_cast<uint8_t>(held), entry->second.regions[held >> 8].depth, held >> 8};
}

// Black to move, a region is solved without depth: its positions are seen again with White to
// move, after each of Black's replies, where it pays to go deeper.
int CRegionSolver::MaxDepth(const TChessboard& board) const {
    return board.WhiteToMove() ? m_limits.maxDepth : 0;
}

uint8_t CRegionSolver::DistanceLocked(const TChessboard& board, int depth) {
    if (!RegionEligible(board)) return kNoDistance;
    TRegionPosition position;
    if (!ReadRegionPosition(board, position)) return kNoDistance;
    return DistanceLocked(board, position, depth);
}

uint8_t CRegionSolver::DistanceLocked(const TChessboard& board, const TRegionPosition& position, int depth) {
    const THeld held = Held(position);
    if (held.found && held.depth >= depth) return held.distance;
    if (depth < 0 || m_bRoomSpent) return held.distance;
    TClassEntry& entry = m_classes[position.regionClass];
    if (entry.tooLarge) return held.distance;
    if (EstimatedRegionSize(board) > m_limits.maxEstimate) {
        entry.tooLarge = true;
        ++m_stats.tooLarge;
        return held.distance;
    }
    // A region solved before with less depth is solved again, from its own start.
    const uint32_t region = held.found ? held.region : static_cast<uint32_t>(entry.regions.size());
    if (!Solve(position, entry, region, depth)) return held.distance;
    const uint8_t solved = static_cast<uint8_t>(entry.positions.Find(position.key));
    if (solved != kNoDistance) ++m_stats.settled;
    return solved;
}

bool CRegionSolver::Solve(const TRegionPosition& position, TClassEntry& entry, uint32_t region, int depth) {
    const uint64_t room = std::min<uint64_t>(m_limits.maxNodes, m_limits.totalNodes - m_stats.nodes);
    const uint64_t start = region < entry.regions.size() ? entry.regions[region].start : position.key;
    CRegionAnalysis analysis(*this, position.regionClass, depth, entry.positions, region);
    if (!analysis.Gather(start, room)) {
        // Too large for one region, or for what is left of the solver's room.
        if (room == m_limits.maxNodes) {
            entry.tooLarge = true;
            ++m_stats.tooLarge;
        } else {
            m_bRoomSpent = true;
        }
        return false;
    }
    analysis.Settle();
    if (region == entry.regions.size()) entry.regions.push_back({start, depth});
    entry.regions[region].depth = depth;
    const std::vector<uint64_t>& keys = analysis.Keys();
    const std::vector<uint8_t>& distances = analysis.Distances();
    for (size_t i = 0; i < keys.size(); ++i) entry.positions.Set(keys[i], distances[i] | region << 8);
    ++m_stats.regions;
    m_stats.nodes += keys.size();
    if (m_stats.nodes >= m_limits.totalNodes) m_bRoomSpent = true;
    return true;
}

bool CRegionSolver::CKnownRegions::Settle(const TChessboard& node, uint8_t& result) {
    if (!Fits(node, m_solver.DistanceLocked(node, -1), node.movesLeft)) return false;
    result = kMate;
    return true;
}

void CRegionSolver::PollStop() {
    if (m_pStop && m_pStop->load(std::memory_order_relaxed)) throw TStopped{};
    if (std::chrono::steady_clock::now() >= m_deadline) throw TStopped{};
}

std::string RegionStatsText(const TRegionStats& s) {
    return fmt::format("Regions: {} solved, {} positions, {} classes too large, {} nodes settled\n",
                       s.regions, s.nodes, s.tooLarge, s.settled);
}

TRegionStats CRegionSolver::Stats() const {
    std::shared_lock lock(m_mutex);
    return m_stats;
}

}  // namespace moremate
