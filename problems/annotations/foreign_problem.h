// Problem text taken in from outside (the clipboard) in one of two layouts:
// - the diagram layout: "\author{...}", "\year{...}", "\award{...}", "\stip{\#3}", the position as
//   a comment "%\fen{...}" and the database reference as a comment "% PDB-ID: P1234567";
// - the key-value layout: "problemid: 123", "stipulation: "#3"", "white: [Ke1, Qa7]" and
//   "black: [Kc1]".
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/chessboard.h"
#include "database_links.h"
#include "problems/format/problem_entry.h"

namespace moremate {

struct TForeignProblem {
    TChessboard board;          // validated; White to move
    std::optional<int> nMoves;  // n of a stipulation "#n"
    std::string sAuthor;
    std::string sYear;
    std::string sAward;
    std::optional<TDatabaseReference> reference;
};

// The problem the text holds, or nothing when it is in neither layout. Throws ChessException
// when the position or the stipulation cannot be read.
std::optional<TForeignProblem> RecognizeForeignProblem(std::string_view text);

// The record of the problem under `number`: a directmate when the stipulation gives n, else a
// position without stipulation; the description joins author, year, award and reference by ", ";
// an award with a place gives its place tag.
ProblemEntry ForeignProblemEntry(const TForeignProblem& problem, uint32_t number);

}  // namespace moremate
