#include "problem_heuristics.h"

#include <string>

#include "core/chess_exception.h"
#include "engine/heuristics/heuristic_text.h"
#include "engine/heuristics/position_type.h"
#include "solving_task.h"

namespace moremate {

THeuristicSet ApplyProblemHeuristics(const ProblemEntry& entry, THeuristicSet set) {
    for (const auto& [bit, text] : entry.m_mapHeuristicParams) {
        try {
            ReadHeuristicParameters(bit, text, set.params);
        } catch (const ChessException& e) {
            throw ChessException("Problem " + std::to_string(entry.m_nNumber) + ": invalid parameters of " +
                                 std::string(HeuristicName(bit)) + "(" + text + "): " + e.what());
        }
        set.Add(bit);
    }
    set.Remove(entry.m_nHeuristicsOff);
    return set;
}

THeuristicSet EngineHeuristics(const ProblemEntry& entry) {
    return ApplyProblemHeuristics(entry, PositionTypeHeuristics(MakeSolvingTask(entry).position));
}

}  // namespace moremate
