// Blocked problems settled from their regions before any pass: the region after each first move
// is solved as deep as a White node's would be, moves out of the first position's region first,
// and the first moves proven to mate within the stipulation are handed to the passes to be tried
// first.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "core/chessboard.h"
#include "engine/lookup/region_solver.h"

namespace moremate {

// `Auto`: regions for blocked positions only (see RegionsDecide), solved before the passes and
// looked up by them; `On`: for every position where they can be, solved by the passes too.
enum class TRegionMode : uint8_t { Auto, Off, On };

// "auto", "off", "on"; false for any other text.
bool ReadRegionMode(const std::string& text, TRegionMode& mode);

// Whether a first position is blocked enough for its regions to be solved without being asked:
// its pawns locked and its region small.
bool RegionsDecide(const TChessboard& root);

// Up to `limit` first moves of `root` whose mate the regions prove within its half-moves,
// shortest first, from what `budgetMs` lets be solved.
std::vector<TMove> RegionFirstMoves(const TChessboard& root, CRegionSolver& solver, int64_t budgetMs,
                                    size_t limit);

}  // namespace moremate
