// The longest mates of a position type's data: the longest one stored with White to move, and
// the placements that hold it, found one after another in either direction.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "precalc/global/global_storage.h"
#include "precalc/types/position_type.h"

namespace moremate {

struct TLongestMate {
    uint16_t nValue = 0;  // as stored (White mates in n); 0 when the data hold no mate
    uint64_t nIndex = 0;  // the first placement holding it
};

// Over the placements with White to move.
TLongestMate LongestMate(const TPrecalcType& type, const CGlobalStorage& storage);

// The placement after `from` going by `step` (+1 or -1, round the end) that `wanted` accepts and
// that is a legal position with the side given to move; nothing when no other is.
std::optional<uint64_t> NextPlacement(const TPrecalcType& type, uint64_t from, int step, bool whiteToMove,
                                      const std::function<bool(uint64_t)>& wanted = {});

// The next placement, as above, that holds `value` with White to move.
std::optional<uint64_t> NextPlacementWith(const TPrecalcType& type, const CGlobalStorage& storage,
                                          uint64_t from, int step, uint16_t value);

}  // namespace moremate
