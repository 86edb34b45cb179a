// The engine's own detections of the initial position type check: heuristics that no dialog
// offers, because they need what the engine finds in the position (the squares of a sea snake's
// pendulum and triangle, the key square, the level of Black's pawn blockade), and the figures for
// which DLFU is applied dynamically.
#pragma once

#include <array>
#include <vector>

#include "core/chessboard.h"
#include "heuristic_set.h"
#include "position_type.h"

namespace moremate {

// Black's pieces with a legal move in `black` (Black to move), by square.
std::array<bool, 64> MobileBlackPieces(const TChessboard& black);

// All Black's pawns (two or more) blocked and its figures shut in: SH_USEBLOCKBLACKPAWNSLEVEL; when besides
// them both sides have only their kings, also SH_ZUGZWANGTRIANGLES (the white king wins the tempo).
void DetectPawnBlockade(const TChessboard& root, const TRootFacts& facts, THeuristicSet& set);

// A black king without flights (and Black's figures shut in) whose neighbourhood has exactly one square that
// a single White piece guards (and no Black piece holds): SH_KEYSQUARE on that square.
void DetectKeySquare(const TChessboard& root, const TRootFacts& facts, THeuristicSet& set);

// Sea snake: the black king and pawns cannot move, and Black's one mobile figure swings between
// two squares (the pendulum); the white king stands on a triangle of three mutually adjacent
// squares, the other two empty and safe from Black. Sets SH_SEASNAKE with the pendulum squares,
// the approach square and the turn-back square (the other two corners of the triangle).
void DetectSeaSnake(const TChessboard& root, const TRootFacts& facts, THeuristicSet& set);

// Black figures that a move of the black king walls in (none of them can move after it, with
// White passing), when the root itself has too few immobile figures for DLFU: the squares for
// which the engine applies DLFU dynamically, in square order. Empty when there are not two.
std::vector<Square> DynamicDlfuFigures(const TChessboard& root, const TRootFacts& facts);

}  // namespace moremate
