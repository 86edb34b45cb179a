#include "solving_task.h"

#include "core/movegen.h"
#include "core/validation.h"

namespace moremate {

TSolvingTask MakeSolvingTask(const ProblemEntry& entry) {
    TSolvingTask task;
    task.type = entry.m_type;
    task.nPlies = entry.m_nPlies;
    task.root.start = entry.m_position.board;
    task.root.playedMoves = entry.m_vMoves;
    task.position = task.root.start;
    for (const TMove& move : task.root.playedMoves) {
        const TChessboard before = task.position;
        PlayMove(before, move, task.position);
    }
    task.position.previous = nullptr;
    task.position.problem = nullptr;
    PrepareForSolving(task.position, task.nPlies, true);
    return task;
}

}  // namespace moremate
