// Rules about White's material: figures are not to be given away, the last major piece is kept,
// and in knight problems the black knights fall in time. They look at the move's capture only.
#include "core/attacks.h"
#include "engine/heuristics/line_facts.h"
#include "rules.h"

namespace moremate {
namespace {

constexpr int kPawnNearPromotionRank = 5;  // sixth rank and beyond

// A White pawn on the seventh rank that can promote next move: "a promotion is coming".
bool PromotionComing(const TChessboard& b) {
    for (int sq = MakeSquare(0, 6); sq < MakeSquare(0, 7); ++sq) {
        if (b.squares[sq] != (kWhite | kPawn)) continue;
        const int f = FileOf(sq);
        if (b.squares[sq + 8] == kEmpty) return true;
        if (f > 0 && ColourOf(b.squares[sq + 7]) == kBlack) return true;
        if (f < 7 && ColourOf(b.squares[sq + 9]) == kBlack) return true;
    }
    return false;
}

bool BlackCapturedWhite(const TRuleContext& c, Piece& captured) {
    if (!c.BlackMoved()) return false;
    captured = CapturedPiece(c.after);
    return ColourOf(captured) == kWhite;
}

bool AnyBlackKnightAttacked(const TChessboard& b) {
    for (int sq = 0; sq < 64; ++sq)
        if (b.squares[sq] == (kBlack | kKnight) && AttackedBy(b, sq, kWhite)) return true;
    return false;
}

}  // namespace

// A Black capture of a White figure; with "incl.pawns" of any White pawn, with
// "incl.pawnsBeforePromo" of a White pawn on the sixth or seventh rank.
bool WhiteLostFigure(const TRuleContext& c) {
    Piece captured;
    if (!BlackCapturedWhite(c, captured)) return false;
    if (IsFigure(captured)) return true;
    const uint8_t pawns = c.set.params.loseFiguresPawns;
    if (pawns == 0) return false;
    return pawns == 1 || RankOf(CaptureSquare(c.after)) >= kPawnNearPromotionRank;
}

// The capture of White's last queen or rook, unless a pawn is about to promote into a new one.
bool LastMajorPieceLost(const TRuleContext& c) {
    Piece captured;
    if (!BlackCapturedWhite(c, captured)) return false;
    const uint8_t type = TypeOf(captured);
    if (type != kQueen && type != kRook) return false;
    return c.after.whiteQueens + c.after.whiteRooks == 0 && !PromotionComing(c.after);
}

// The mate needs every black knight taken first: with n knights left White needs n captures and
// the mate, and when it is down to exactly that, a knight must be under attack now.
bool KnightNotCapturedInTime(const TRuleContext& c) {
    const TChessboard& b = c.after;
    if (!b.WhiteToMove() || b.blackKnights == 0) return false;
    const int movesLeft = WhiteMovesLeft(b);
    const int needed = b.blackKnights + 1;
    return movesLeft < needed || (movesLeft == needed && !AnyBlackKnightAttacked(b));
}

}  // namespace moremate
