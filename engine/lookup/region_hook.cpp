#include "region_hook.h"

#include "engine/state/search_result.h"

namespace moremate {
namespace {

// Half-moves left from which a node's region is solved when it is not known yet.
constexpr int kSolveFromHalfMoves = 12;

}  // namespace

bool CRegionHook::Settle(const TChessboard& node, uint8_t& result) {
    if (m_pNext && m_pNext->Settle(node, result)) return true;
    if (node.movesLeft < 2) return false;
    const uint8_t d =
        m_solver.Distance(node, m_bSolving && node.movesLeft >= kSolveFromHalfMoves, node.movesLeft);
    if (!Fits(node, d, node.movesLeft)) return false;
    result = kMate;
    return true;
}

int CRegionHook::MateDistance(const TChessboard& node) {
    if (m_pNext) {
        if (const int d = m_pNext->MateDistance(node); d >= 0) return d;
    }
    const uint8_t d = m_solver.Distance(node, false, node.movesLeft);
    return d == kNoDistance ? -1 : d;
}

}  // namespace moremate
