// CSpecialHeuristics: the special heuristics of one heuristic set, as the search's hook.
// Built once per pass from the set and the problem's root position; it keeps no state between
// calls, so the threads of a pass may share one.
//
//     CSpecialHeuristics heuristics(set, problemRoot);
//     TSearchEnvironment env;
//     env.heuristics = &heuristics;
#pragma once

#include <cstdint>
#include <vector>

#include "engine/heuristics/heuristic_set.h"
#include "engine/search/search_hooks.h"
#include "rule_context.h"

namespace moremate {

class CSpecialHeuristics final : public CHeuristicHook {
  public:
    CSpecialHeuristics(const THeuristicSet& set, const TChessboard& root);

    // The first rule in force, in a fixed order, that makes the line doubtful: its bit, else 0.
    uint32_t Check(const TChessboard& after) override;
    // The move filters in force, in a fixed order; the bit of the first that dropped a move, else 0.
    uint32_t FilterMoves(const TChessboard& node, TMoveList& moves) override;

  private:
    bool OthersApply(const TChessboard& board) const;

    THeuristicSet m_set;
    TChessboard m_root;
    // Only the rules and filters of the set's bits are kept, so heuristics not in force cost nothing.
    std::vector<TRuleEntry> m_rules;
    std::vector<TFilterEntry> m_filters;
    bool m_bForcedMate = false;
};

}  // namespace moremate
