// What the engine is given to solve a problem: the root position with its stipulation and the
// moves stated as already played. The engine never sees a ProblemEntry.
#pragma once

#include <string>

#include "core/chessboard.h"
#include "problems/format/problem_entry.h"

namespace moremate {

struct TSolvingTask {
    ProblemType type = ProblemType::Directmate;  // only directmates are solved
    int nPlies = 0;
    TProblemRoot root;     // the initial position and the moves already played
    TChessboard position;  // root.start after root.playedMoves, prepared for solving nPlies half-moves;
                           // its `problem` link is left for the engine to set to where the task lives
};

// Throws ChessException when the position cannot be solved as stated (see PrepareForSolving).
TSolvingTask MakeSolvingTask(const ProblemEntry& entry);

// Plays `moves` (long notation, White's and Black's moves in pairs) on the task's position: they
// join the moves already played, and the task becomes the position reached with as many moves
// fewer left. Throws ChessException for a move that cannot be played, an odd number of half-moves,
// or when no move of the stipulation would be left.
void PlayMovesAfter(TSolvingTask& task, const std::string& moves);

// Whether the task's position repeats a position of the line that reaches it from the start.
bool AnalysedLineRepeats(const TSolvingTask& task);

}  // namespace moremate
