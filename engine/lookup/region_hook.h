// The regions seen from the search: a node of a region whose forced mate fits its half-moves left
// is settled as a mate. Regions are solved for nodes far enough from the end that a search of
// their own would cost more; nearer the end only regions already solved are looked up. Other
// precalculated data, when there is any, is asked first.
#pragma once

#include "engine/search/search_hooks.h"
#include "region_solver.h"

namespace moremate {

class CRegionHook : public CGlobalRegisterHook {
  public:
    // `next` (may be null) is asked first.
    CRegionHook(CRegionSolver& solver, CGlobalRegisterHook* next) : m_solver(solver), m_pNext(next) {}
    bool Settle(const TChessboard& node, uint8_t& result) override;
    int MateDistance(const TChessboard& node) override;
    // Whether unknown regions are solved (the default) or only known ones looked up. Set while no
    // search runs.
    void SetSolving(bool solving) { m_bSolving = solving; }

  private:
    CRegionSolver& m_solver;
    CGlobalRegisterHook* m_pNext;
    bool m_bSolving = true;
};

}  // namespace moremate
