// The text shown when checking finds an entry whose mate is no longer than its proven no-mate.
#pragma once

#include <cstdint>
#include <string>

#include "register_entry.h"

namespace moremate {

// The position of a key as FEN, with the side to move given by the level n: a key that does not
// make a valid position is shown by its piece placement alone.
std::string RegisterItemFen(const TChessboardRegisterItem& item, uint16_t n);

// "\n\nnMoves=..." with the result being inserted, the entry's values and the position's FEN.
std::string IncoherenceReport(uint16_t n, bool bThereIsMate, const TChessboardRegisterEntry& entry);

}  // namespace moremate
