// Rules about the two kings of miniatures and about the black king's freedom. Each reads the
// king squares kept on the board and, at most, the flight squares of the black king.
#include "core/attacks.h"
#include "engine/heuristics/line_facts.h"
#include "rules.h"

namespace moremate {
namespace {

constexpr int kFreeSquaresAllowed = 3;
constexpr int kFreeSquaresAllowedStrict = 2;
// A mate in three needs White's force close to the black king: a king with this many flight
// squares is in the open, and one piece with a far-away king cannot close it in.
constexpr int kOpenKingFlights = 6;
constexpr int kHelpingKingDistance = 2;
constexpr int kMateInThreeHalfMoves = 5;

}  // namespace

// The white king must stand next to the black king when it is mated: a line is hopeless once the
// white king cannot get there with the White moves left.
bool KingsTooFarApart(const TRuleContext& c) {
    const int distance = KingDistance(c.after.WhiteKingSquare(), c.after.BlackKingSquare());
    return distance - 1 > WhiteMovesLeft(c.after);
}

// In miniatures the white king closes in on the black king; a step back wastes a tempo.
bool WhiteKingRecedes(const TRuleContext& c) {
    if (c.BlackMoved() || c.Moved() != (kWhite | kKing)) return false;
    const int black = c.after.BlackKingSquare();
    return KingDistance(c.Move().to, black) > KingDistance(c.Move().from, black);
}

// After each quiet White move the black king is to stay boxed in: at most three free squares
// around it (two when strict). Checks are exempt: the king is being driven, and the box is judged
// again after White's next quiet move.
bool BlackKingNotSurrounded(const TRuleContext& c) {
    if (c.BlackMoved() || c.after.InCheck()) return false;
    const int allowed = c.set.params.surroundedStrict ? kFreeSquaresAllowedStrict : kFreeSquaresAllowed;
    return BlackKingFlightSquares(c.after) > allowed;
}

// Judged at White's nodes with three moves left: a black king in the open cannot be mated by a
// single White figure unless the white king stands close by to help.
bool NoMateInThreeInSight(const TRuleContext& c) {
    const TChessboard& b = c.after;
    if (!b.WhiteToMove() || b.movesLeft != kMateInThreeHalfMoves) return false;
    const int figures = b.whiteQueens + b.whiteRooks + b.whiteBishops + b.whiteKnights +
                        (KingDistance(b.WhiteKingSquare(), b.BlackKingSquare()) <= kHelpingKingDistance);
    return figures < 2 && BlackKingFlightSquares(b) >= kOpenKingFlights;
}

}  // namespace moremate
