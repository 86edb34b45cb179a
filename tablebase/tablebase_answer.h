// The online tablebase's answer about one position: win, draw or loss for the side to move, the
// distances to mate and to zeroing, and the same facts for every legal move. Values of a move are
// those of the position after it, seen from the side that then moves (the service's own view):
// a move that wins for the mover shows as a loss.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace moremate {

inline constexpr uint8_t kWdlWin = 1;
inline constexpr uint8_t kWdlDraw = 0;
inline constexpr uint8_t kWdlLoss = 255;
inline constexpr uint8_t kWdlUnknown = 254;

// Distance to mate in plies, signed as the service gives it: positive when the side to move mates,
// negative when it is mated. 32768 as sixteen bits (the lowest int16_t) when the service gave none.
inline constexpr int16_t kNoDtm = INT16_MIN;
inline constexpr uint8_t kNoDtz = 255;

struct TTablebaseMove {
    uint8_t m_byFrom = 0;
    uint8_t m_byTo = 0;
    uint8_t m_byPromotion = 0;  // piece type of the promotion (kQueen, kRook...), 0 for none
    uint8_t m_byWdl = kWdlUnknown;
    int16_t m_shDtm = kNoDtm;
    uint8_t m_byDtz = kNoDtz;
    uint8_t m_bySpare = 255;

    bool operator==(const TTablebaseMove&) const = default;
};
static_assert(sizeof(TTablebaseMove) == 8);

struct TTablebaseAnswer {
    uint8_t m_byWdl = kWdlUnknown;
    int16_t m_shDtm = kNoDtm;
    uint8_t m_byDtz = kNoDtz;
    int m_nMoves = -1;  // -1: the answer could not be read and is not to be used
    std::vector<TTablebaseMove> m_vMoves;

    bool Readable() const { return m_nMoves >= 0; }
    bool operator==(const TTablebaseAnswer&) const = default;
};

// The move as the service writes it: "e7e8q".
std::string UciText(const TTablebaseMove& move);
// "win", "draw", "loss" or "unknown".
const char* WdlText(uint8_t wdl);

}  // namespace moremate
