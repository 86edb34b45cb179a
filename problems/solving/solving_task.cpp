#include "solving_task.h"

#include <deque>

#include "core/chess_exception.h"
#include "core/movegen.h"
#include "core/validation.h"
#include "engine/search/position_repetition.h"
#include "problems/format/problem_moves.h"

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

void PlayMovesAfter(TSolvingTask& task, const std::string& moves) {
    const std::vector<TMove> played = ReadMoveSequence(moves, task.position);
    const int count = static_cast<int>(played.size());
    if (count % 2 != 0) throw ChessException("Moves to play after the position must end with Black's move");
    if (count >= task.nPlies)
        throw ChessException("No move of the stipulation is left after the moves played");
    for (const TMove& move : played) {
        const TChessboard before = task.position;
        PlayMove(before, move, task.position);
        task.root.playedMoves.push_back(move);
    }
    task.nPlies -= count;
    task.position.previous = nullptr;
    PrepareForSolving(task.position, task.nPlies, true);
}

bool AnalysedLineRepeats(const TSolvingTask& task) {
    std::deque<TChessboard> line{task.root.start};  // a deque keeps every board where it is
    for (const TMove& move : task.root.playedMoves) {
        const TChessboard& before = line.back();
        PlayMove(before, move, line.emplace_back());
    }
    return RepeatsPositionOfLine(line.back());
}

}  // namespace moremate
