// Whole-board transformations offered on a problem: colour swap, rotation by 90 degrees and
// shifts. They keep the board transformed (swap and rotation also the description updated) even
// when the new position fails validation; the failure is returned for the caller to report.
#pragma once

#include <optional>
#include <string>

#include "chessboard.h"

namespace moremate {

// Returns the validation message when the swapped position breaks a rule.
std::optional<std::string> SwapColours(TChessboard& board, std::string& description);
// Moves every piece `files` files to the right and `ranks` ranks up (negative: left, down).
// Throws ChessException, the board untouched, when a piece would leave the board; returns the
// validation message when the shifted position breaks a rule (a pawn on its last rank).
std::optional<std::string> Shift(TChessboard& board, int files, int ranks);
// A quarter turn clockwise with White at the bottom: a1 -> a8 -> h8 -> h1 -> a1.
std::optional<std::string> Rotate90(TChessboard& board, std::string& description);

}  // namespace moremate
