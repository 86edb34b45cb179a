// Whole-board transformations offered on a problem: colour swap and rotation by 90 degrees.
// Both keep the board transformed and the description updated even when the new position fails
// validation; the failure is returned for the caller to report.
#pragma once

#include <optional>
#include <string>

#include "chessboard.h"

namespace moremate {

// Returns the validation message when the swapped position breaks a rule.
std::optional<std::string> SwapColours(TChessboard& board, std::string& description);
// A quarter turn clockwise with White at the bottom: a1 -> a8 -> h8 -> h1 -> a1.
std::optional<std::string> Rotate90(TChessboard& board, std::string& description);

}  // namespace moremate
