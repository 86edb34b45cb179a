#include "position_key.h"

#include <cstring>

#include "core/movegen.h"
#include "mate_search.h"

namespace moremate {
namespace {

// The finaliser of MurmurHash3: every input bit reaches every output bit.
constexpr uint64_t Mix(uint64_t h) {
    h ^= h >> 33;
    h *= 0xff51afd7ed558ccdULL;
    h ^= h >> 33;
    h *= 0xc4ceb9fe1a85ec53ULL;
    return h ^ (h >> 33);
}

}  // namespace

// The squares are read as eight words; each mix runs its own multiplier chain, so a collision of
// one says nothing about the other.
TPositionKey PositionKey(const TChessboard& node) {
    uint64_t words[8];
    std::memcpy(words, node.squares, sizeof words);
    uint64_t a = 0x9e3779b97f4a7c15ULL, b = 0x632be59bd9b4e019ULL;
    for (const uint64_t w : words) {
        a = (a ^ w) * 0xbf58476d1ce4e5b9ULL;
        a ^= a >> 31;
        b = (b + w) * 0x94d049bb133111ebULL;
        b ^= b >> 29;
    }
    const uint64_t enPassant = EnPassantPossible(node) ? node.epSquare + 1u : 0u;
    const uint64_t extra = uint64_t{CastlingRights(node)} | (enPassant << 8) |
                           (uint64_t{static_cast<uint16_t>(node.movesLeft)} << 16);
    return {Mix(a ^ extra), Mix(b + (extra << 1) + 0x51)};
}

}  // namespace moremate
