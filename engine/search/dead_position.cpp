#include "dead_position.h"

namespace moremate {

namespace {

// The square colours (bit 0 light, bit 1 dark) of the bishops of both sides.
unsigned BishopSquareColours(const TChessboard& node) {
    unsigned colours = 0;
    for (int sq = 0; sq < 64; ++sq) {
        if (TypeOf(node.squares[sq]) == kBishop) colours |= 1u << SquareColour(sq);
    }
    return colours;
}

}  // namespace

bool WhiteCannotMate(const TChessboard& node) {
    if (node.whitePawns != 0 || node.whiteQueens != 0 || node.whiteRooks != 0) return false;
    if (node.whiteKnights + node.whiteBishops == 0) return true;
    if (node.blackPawns != 0 || node.blackQueens != 0 || node.blackRooks != 0 || node.blackKnights != 0)
        return false;
    if (node.whiteBishops == 0) return node.whiteKnights == 1 && node.blackBishops == 0;
    if (node.whiteKnights != 0) return false;
    const unsigned colours = BishopSquareColours(node);
    return colours == 1u || colours == 2u;
}

}  // namespace moremate
