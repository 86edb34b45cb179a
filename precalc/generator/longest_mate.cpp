#include "longest_mate.h"

#include "lookahead.h"

namespace moremate {
namespace {

// A stored mate: neither unknown nor the one-byte mark of a certain escape.
bool IsMate(const CGlobalStorage& storage, uint16_t value) {
    return value != kUnknownMate && (storage.ElementSize() == 2 || value != kEscapes);
}

}  // namespace

TLongestMate LongestMate(const TPrecalcType& type, const CGlobalStorage& storage) {
    TLongestMate longest;
    for (uint64_t i = 0; i < type.PlacementCount(); ++i) {
        const uint16_t value = storage.Element(i);
        if (IsMate(storage, value) && value > longest.nValue) longest = {value, i};
    }
    return longest;
}

std::optional<uint64_t> NextPlacement(const TPrecalcType& type, uint64_t from, int step, bool whiteToMove,
                                      const std::function<bool(uint64_t)>& wanted) {
    const uint64_t count = type.PlacementCount();
    TChessboard board;
    uint64_t index = from % count;
    for (uint64_t n = 1; n < count; ++n) {
        index = (index + count + static_cast<uint64_t>(step)) % count;
        if ((!wanted || wanted(index)) && SetUpPlacement(type, index, whiteToMove, board)) return index;
    }
    return std::nullopt;
}

std::optional<uint64_t> NextPlacementWith(const TPrecalcType& type, const CGlobalStorage& storage,
                                          uint64_t from, int step, uint16_t value) {
    return NextPlacement(type, from, step, true,
                         [&storage, value](uint64_t index) { return storage.Element(index) == value; });
}

}  // namespace moremate
