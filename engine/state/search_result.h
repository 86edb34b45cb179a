// Result codes of the forced-mate search, one byte each, and their words in the logs.
#pragma once

#include <cstdint>

namespace moremate {

enum SearchResult : uint8_t {
    kNoMate = 0,
    kMate = 1,
    kDepthLimit = 252,
    kRepetition = 253,
    kUnknownResult = 254,  // nothing known (register look-ups only)
    kDoubtful = 255,
};

inline const char* SearchResultWord(uint8_t result) {
    switch (result) {
        case kNoMate:
            return "no mate";
        case kMate:
            return "mate";
        case kDepthLimit:
            return "end of FindForcedMate depth";
        case kRepetition:
            return "position repetition";
        case kDoubtful:
            return "doubtful";
        default:
            return "result error";
    }
}

}  // namespace moremate
