#include "region_analysis.h"

#include <algorithm>
#include <numeric>

#include "core/attacks.h"
#include "core/movegen.h"

namespace moremate {
namespace {

constexpr uint8_t kMaxDistance = 250;

bool StaysInRegion(const TChessboard& board, const TMove& m) {
    return TypeOf(board.squares[m.from]) != kPawn && board.squares[m.to] == kEmpty;
}

}  // namespace

uint32_t CRegionAnalysis::EdgeTo(uint64_t key) {
    const uint32_t known = m_known.Find(key);
    if (known != CRegionTable::kAbsent && known >> 8 != m_nRegion) return kKnownEdge | (known & 255);
    bool added = false;
    const uint32_t node = m_index.FindOrAdd(key, static_cast<uint32_t>(m_keys.size()), added);
    if (added) m_keys.push_back(key);
    return node;
}

bool CRegionAnalysis::Gather(uint64_t startKey, uint64_t maxNodes) {
    EdgeTo(startKey);
    TChessboard board, child;
    SetUpRegionBoard(m_class, startKey, board);
    const int maxFlights = BlackKingFlightSquares(board);
    TMoveList moves;
    for (size_t i = 0; i < m_keys.size(); ++i) {
        if (m_keys.size() > maxNodes) return false;
        if ((i & 1023) == 0) m_solver.PollStop();
        const uint64_t key = m_keys[i];
        SetUpRegionBoard(m_class, key, board);
        GenerateLegalMoves(board, moves);
        uint8_t flags = moves.count == 0 ? kNoMove : 0;
        if (board.InCheck()) flags |= kInCheck;
        m_edgeStart.push_back(static_cast<uint32_t>(m_edges.size()));
        for (const TMove& m : moves) {
            if (!StaysInRegion(board, m)) {
                flags |= kHasExit;
                continue;
            }
            if (board.WhiteToMove()) {
                PlayMove(board, m, child);
                if (BlackKingFlightSquares(child) > maxFlights) continue;
            }
            m_edges.push_back(EdgeTo(KeyAfterPieceMove(m_class, key, m.from, m.to)));
        }
        m_flags.push_back(flags);
    }
    m_edgeStart.push_back(static_cast<uint32_t>(m_edges.size()));
    m_index = CRegionTable{};
    return true;
}

void CRegionAnalysis::LinkParents() {
    const size_t n = m_keys.size();
    m_parentStart.assign(n + 1, 0);
    for (uint32_t child : m_edges)
        if (!(child & kKnownEdge)) ++m_parentStart[child + 1];
    std::partial_sum(m_parentStart.begin(), m_parentStart.end(), m_parentStart.begin());
    m_parents.resize(m_parentStart[n]);
    std::vector<uint32_t> fill(m_parentStart.begin(), m_parentStart.end() - 1);
    for (uint32_t node = 0; node < n; ++node)
        for (uint32_t e = m_edgeStart[node]; e < m_edgeStart[node + 1]; ++e)
            if (!(m_edges[e] & kKnownEdge)) m_parents[fill[m_edges[e]]++] = node;
}

void CRegionAnalysis::Push(uint8_t distance, uint32_t node) {
    if (distance > kMaxDistance) return;
    if (distance >= m_buckets.size()) m_buckets.resize(distance + 1u);
    m_buckets[distance].push_back(node);
}

void CRegionAnalysis::Settle() {
    LinkParents();
    if (!SettleRound(false)) SettleRound(true);
}

// Returns whether every White node with a move out of the region found its distance: only those
// gain from the second round.
bool CRegionAnalysis::SettleRound(bool deep) {
    const size_t n = m_keys.size();
    m_bDeep = deep;
    m_distances.assign(n, kNoDistance);
    m_unsettled.assign(n, 0);
    m_worst.assign(n, 0);
    m_buckets.clear();
    if (!deep) m_whiteExits.assign(n, kNoDistance);
    for (uint32_t node = 0; node < n; ++node) {
        if ((node & 1023) == 0) m_solver.PollStop();
        StartNode(node);
    }
    for (size_t d = 0; d < m_buckets.size(); ++d) {
        // The bucket may grow while it is worked through: a Black node completed at d.
        for (size_t k = 0; k < m_buckets[d].size(); ++k) {
            const uint32_t node = m_buckets[d][k];
            if (m_distances[node] != kNoDistance) continue;
            m_distances[node] = static_cast<uint8_t>(d);
            if (WhiteToMoveInKey(m_keys[node]))
                SettleWhite(node, static_cast<uint8_t>(d));
            else
                SettleBlack(node, static_cast<uint8_t>(d));
        }
        m_buckets[d] = {};
        m_solver.PollStop();
    }
    for (uint32_t node = 0; node < n; ++node)
        if ((m_flags[node] & kHasExit) && m_distances[node] == kNoDistance && WhiteToMoveInKey(m_keys[node]))
            return false;
    return true;
}

// What a node knows before any of its region is settled: its mate or stalemate, the moves to
// positions known before, and for White the moves out of the region.
void CRegionAnalysis::StartNode(uint32_t node) {
    const bool white = WhiteToMoveInKey(m_keys[node]);
    if (m_flags[node] & kNoMove) {
        if (!white && (m_flags[node] & kInCheck)) Push(0, node);
        return;
    }
    for (uint32_t e = m_edgeStart[node]; e < m_edgeStart[node + 1]; ++e) {
        const uint32_t edge = m_edges[e];
        if (!(edge & kKnownEdge)) {
            ++m_unsettled[node];
            continue;
        }
        const uint8_t d = static_cast<uint8_t>(edge);
        if (white && d != kNoDistance) Push(static_cast<uint8_t>(d + 1), node);
        if (!white) m_worst[node] = std::max(m_worst[node], d);
    }
    if (white && (m_flags[node] & kHasExit)) {
        // The second round searches the moves out of the nodes the first left without a mate.
        if (!m_bDeep)
            m_whiteExits[node] = BestWhiteExit(node, false);
        else if (m_whiteExits[node] == kNoDistance)
            m_whiteExits[node] = BestWhiteExit(node, true);
        Push(m_whiteExits[node], node);
    }
    if (!white && m_unsettled[node] == 0 && m_worst[node] != kNoDistance) BlackComplete(node, m_worst[node]);
}

// Black positions that reach this White node: one more of their moves is settled.
void CRegionAnalysis::SettleWhite(uint32_t node, uint8_t distance) {
    for (uint32_t p = m_parentStart[node]; p < m_parentStart[node + 1]; ++p) {
        const uint32_t parent = m_parents[p];
        if (m_distances[parent] == kNoDistance && --m_unsettled[parent] == 0 &&
            m_worst[parent] != kNoDistance)
            BlackComplete(parent, std::max(distance, m_worst[parent]));
    }
}

// White positions that reach this Black node mate one move later, unless settled before.
void CRegionAnalysis::SettleBlack(uint32_t node, uint8_t distance) {
    for (uint32_t p = m_parentStart[node]; p < m_parentStart[node + 1]; ++p) {
        const uint32_t parent = m_parents[p];
        if (m_distances[parent] == kNoDistance) Push(static_cast<uint8_t>(distance + 1), parent);
    }
}

// Every move of a Black node inside the region is settled, the last (the longest) at `worst`.
void CRegionAnalysis::BlackComplete(uint32_t node, uint8_t worst) {
    if (m_flags[node] & kHasExit) {
        const uint8_t exits = WorstBlackExit(node);
        if (exits == kNoDistance) return;
        worst = std::max(worst, exits);
    }
    Push(worst, node);
}

uint8_t CRegionAnalysis::BestWhiteExit(uint32_t node, bool deep) {
    TChessboard board, child;
    SetUpRegionBoard(m_class, m_keys[node], board);
    TMoveList moves;
    GenerateLegalMoves(board, moves);
    uint8_t best = kNoDistance;
    for (const TMove& m : moves) {
        if (StaysInRegion(board, m)) continue;
        PlayMove(board, m, child);
        const uint8_t d = Entered(child, deep && WorthSearching(child, m));
        if (d != kNoDistance) best = std::min<uint8_t>(best, static_cast<uint8_t>(d + 1));
        if (best == 1) break;
    }
    return best;
}

// White's moves out of the region that the second round searches: checks, and moves that Black
// cannot answer by taking the moved piece, but no promotion to a rook or a bishop. Leaving out a
// White move never makes a false mate, only a missed one.
bool CRegionAnalysis::WorthSearching(const TChessboard& child, const TMove& m) {
    if (m.PromotedType() == kRook || m.PromotedType() == kBishop) return false;
    return child.InCheck() || !IsAttacked(child, m.to, kBlack);
}

uint8_t CRegionAnalysis::WorstBlackExit(uint32_t node) {
    TChessboard board, child;
    SetUpRegionBoard(m_class, m_keys[node], board);
    TMoveList moves;
    GenerateLegalMoves(board, moves);
    uint8_t worst = 0;
    for (const TMove& m : moves) {
        if (StaysInRegion(board, m)) continue;
        PlayMove(board, m, child);
        const uint8_t d = Entered(child, false);
        if (d == kNoDistance) return kNoDistance;
        worst = std::max(worst, d);
    }
    return worst;
}

// A position outside the region: mated or stalemated, else its own region's distance; for
// White to move, a mate at once; and on the deep round, the ordinary search.
uint8_t CRegionAnalysis::Entered(const TChessboard& board, bool deep) {
    if (!HasLegalMove(board)) return !board.WhiteToMove() && board.InCheck() ? 0 : kNoDistance;
    const uint8_t known = m_solver.DistanceLocked(board, m_nDepth - 1);
    if (known != kNoDistance) return known;
    if (deep) return SearchedDistance(board);
    return board.WhiteToMove() && HasMateInOne(board) ? 1 : kNoDistance;
}

uint8_t CRegionAnalysis::SearchedDistance(const TChessboard& board) {
    if (!m_pSearch) {
        TSearchEnvironment env;
        env.globalRegister = &m_solver.m_lookup;
        env.stop = m_solver.m_pStop;
        m_pSearch = std::make_unique<TMateSearch>(env);
    }
    TChessboard node = board;
    for (int moves = 1; moves <= kExitSearchMoves; ++moves) {
        node.movesLeft = static_cast<int16_t>(board.WhiteToMove() ? 2 * moves - 1 : 2 * moves);
        node.movesAtStart = node.movesLeft;
        m_pSearch->SetNodeLimit(m_pSearch->Nodes() + kExitSearchNodes);
        try {
            if (m_pSearch->FindForcedMate(node) == kMate) return static_cast<uint8_t>(moves);
        } catch (const TSearchCancelled&) {
            return kNoDistance;
        } catch (const TSearchStopped&) {
            throw CRegionSolver::TStopped{};
        }
    }
    return kNoDistance;
}

}  // namespace moremate
