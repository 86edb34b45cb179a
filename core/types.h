// Squares, piece codes and moves: the byte-sized vocabulary every part of the solver speaks.
#pragma once

#include <cstdint>

namespace moremate {

// A square is 8 * rank + file, a1 = 0, h8 = 63; any value from 64 up means "none".
using Square = uint8_t;
inline constexpr Square kNoSquare = 255;

constexpr int FileOf(int sq) {
    return sq & 7;
}
constexpr int RankOf(int sq) {
    return sq >> 3;
}
constexpr int MakeSquare(int file, int rank) {
    return 8 * rank + file;
}
constexpr bool OnBoard(int file, int rank) {
    return file >= 0 && file < 8 && rank >= 0 && rank < 8;
}
// Square colour parity: a1 has parity 0.
constexpr int SquareColour(int sq) {
    return ((sq >> 3) + sq) & 1;
}
// King moves from one square to another on an empty board.
constexpr int KingDistance(int a, int b) {
    const int df = FileOf(a) > FileOf(b) ? FileOf(a) - FileOf(b) : FileOf(b) - FileOf(a);
    const int dr = RankOf(a) > RankOf(b) ? RankOf(a) - RankOf(b) : RankOf(b) - RankOf(a);
    return df > dr ? df : dr;
}

// Piece byte: colour bit 0x40 (White) or 0x80 (Black) plus the type in the low five bits.
// The queen's type is the union of the rook's and the bishop's, so a slider test is one mask.
using Piece = uint8_t;
enum PieceType : uint8_t { kKing = 1, kPawn = 2, kBishop = 4, kRook = 8, kQueen = 12, kKnight = 16 };
inline constexpr uint8_t kTypeMask = 31;
inline constexpr uint8_t kWhite = 0x40;
inline constexpr uint8_t kBlack = 0x80;
inline constexpr uint8_t kColourMask = 0xC0;
inline constexpr Piece kEmpty = 0;

constexpr uint8_t TypeOf(Piece p) {
    return p & kTypeMask;
}
constexpr uint8_t ColourOf(Piece p) {
    return p & kColourMask;
}
constexpr uint8_t Opponent(uint8_t colour) {
    return colour ^ kColourMask;
}
constexpr Piece MakePiece(uint8_t colour, uint8_t type) {
    return colour | type;
}
// The usual material value of a piece type in pawns; the king has none.
constexpr int MaterialValue(uint8_t type) {
    switch (type) {
        case kQueen:
            return 9;
        case kRook:
            return 5;
        case kBishop:
        case kKnight:
            return 3;
        case kPawn:
            return 1;
        default:
            return 0;
    }
}
// Colour of the side to move from the parity of the remaining half-moves: odd is White.
constexpr uint8_t SideToMove(int movesLeft) {
    return static_cast<uint8_t>((2 - (movesLeft & 1)) << 6);
}

// A move: from, to and a promotion byte whose low five bits are the promoted type (0 = none).
// from == to is the null move.
struct TMove {
    Square from = 0;
    Square to = 0;
    uint8_t promotion = 0;

    constexpr bool IsNull() const { return from == to; }
    constexpr uint8_t PromotedType() const { return promotion & kTypeMask; }
    friend constexpr bool operator==(const TMove& a, const TMove& b) {
        return a.from == b.from && a.to == b.to && a.PromotedType() == b.PromotedType();
    }
};

// Castling rights, one bit each.
enum CastlingRight : uint8_t {
    kWhiteKingside = 1,
    kWhiteQueenside = 2,
    kBlackKingside = 4,
    kBlackQueenside = 8,
};
inline constexpr uint8_t kAllCastlingRights = 0xF;

}  // namespace moremate
