#include "gives_check.h"

#include <cstdlib>

#include "movegen.h"
#include "tables.h"

namespace moremate {
namespace {

// Whether the squares strictly between `a` and `b` on a line are empty, counting `vacated` empty.
bool LineClear(const TChessboard& b, int from, int to, int vacated) {
    const int dir = g_geometry.direction[from][to];
    const CRay& ray = g_geometry.rays[from][dir];
    for (int i = 0; ray.squares[i] != to; ++i) {
        const int sq = ray.squares[i];
        if (sq != vacated && b.squares[sq] != kEmpty) return false;
    }
    return true;
}

bool DirectCheck(const TChessboard& b, uint8_t type, uint8_t colour, int from, int to, int king) {
    switch (type) {
        case kKnight: {
            const int df = std::abs(FileOf(to) - FileOf(king)), dr = std::abs(RankOf(to) - RankOf(king));
            return df * dr == 2;
        }
        case kPawn:
            return std::abs(FileOf(to) - FileOf(king)) == 1 &&
                   RankOf(king) - RankOf(to) == (colour == kWhite ? 1 : -1);
        case kKing:
            return false;
        default: {
            const int dir = g_geometry.direction[to][king];
            if (dir < 0) return false;
            const uint8_t needed = IsDiagonal(dir) ? kBishop : kRook;
            return (type & needed) == needed && LineClear(b, to, king, from);
        }
    }
}

// A piece leaving the line between the king and a slider of its own side.
bool DiscoveredCheck(const TChessboard& b, uint8_t colour, int from, int to, int king) {
    const int dir = g_geometry.direction[king][from];
    if (dir < 0 || ((g_geometry.rayMask[king][dir] >> to) & 1)) return false;
    const CRay& ray = g_geometry.rays[king][dir];
    bool passed = false;
    const uint8_t slider = colour | (IsDiagonal(dir) ? kBishop : kRook);
    for (int i = 0; i < ray.length; ++i) {
        const int sq = ray.squares[i];
        if (sq == from) {
            passed = true;
            continue;
        }
        const Piece p = b.squares[sq];
        if (p == kEmpty) continue;
        return passed && (p & (kColourMask | slider)) == slider;
    }
    return false;
}

}  // namespace

bool GivesCheck(const TChessboard& board, const TMove& move) {
    const Piece piece = board.squares[move.from];
    const bool castles = TypeOf(piece) == kKing && std::abs(move.to - move.from) == 2;
    const bool enPassant = TypeOf(piece) == kPawn && move.to == board.epSquare;
    if (castles || enPassant) {  // rare: two pieces move, so play it
        TChessboard after;
        PlayMove(board, move, after);
        return after.InCheck();
    }
    const uint8_t colour = ColourOf(piece);
    const int king = board.KingSquare(Opponent(colour));
    const uint8_t type = move.PromotedType() ? move.PromotedType() : TypeOf(piece);
    return DirectCheck(board, type, colour, move.from, move.to, king) ||
           DiscoveredCheck(board, colour, move.from, move.to, king);
}

}  // namespace moremate
