// What the engine is given to solve a problem: the root position with its stipulation and the
// moves stated as already played. The engine never sees a ProblemEntry.
#pragma once

#include "core/chessboard.h"
#include "problem_entry.h"

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

}  // namespace moremate
