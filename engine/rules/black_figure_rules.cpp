// Rules about black figures that the composer's idea keeps in place: blocked figures, a queen
// that may check only once, promoted figures that White must keep trapped, and a piece tied to a
// main diagonal. They walk the line only after a move of the kind they watch.
#include "core/attacks.h"
#include "engine/heuristics/line_facts.h"
#include "rules.h"

namespace moremate {
namespace {

bool Listed(const THeuristicParameters& p, int square) {
    for (int i = 0; i < p.blockedCount && i < 8; ++i)
        if (p.blockedFigures[i] == square) return true;
    return false;
}

// A move of a black queen that checks the White king from a square White does not attack; checks
// into en prise cost Black the queen and do not count.
bool SafeQueenCheck(const TChessboard& after) {
    const TMove& m = after.lastMove;
    if (!after.WhiteToMove() || m.IsNull() || after.squares[m.to] != (kBlack | kQueen)) return false;
    const int8_t attacker = after.whiteKingAttacker;
    return (attacker == m.to || attacker == kManyAttackers) && !AttackedBy(after, m.to, kWhite);
}

// Whether the black figure on `square` has a move to a square where White cannot take it.
bool HasSafeMove(const TChessboard& b, int square) {
    TMoveList moves;
    GenerateLegalMoves(b, moves);
    for (const TMove& m : moves) {
        if (m.from != square) continue;
        TChessboard child;
        PlayMove(b, m, child);
        if (!AttackedBy(child, m.to, kWhite)) return true;
    }
    return false;
}

bool PromotionInLine(const TChessboard& after) {
    for (const TChessboard* p = &after; p->previous; p = p->previous)
        if (p->lastMove.PromotedType() && ColourOf(p->squares[p->lastMove.to]) == kBlack) return true;
    return false;
}

// After White's moves Black's promoted figures (queens only, or any) must be trapped. Without
// "strict" a checking White move is let through: Black has to answer the check first.
bool PromotedFree(const TRuleContext& c, bool queensOnly) {
    const TChessboard& b = c.after;
    if (c.BlackMoved() || (b.InCheck() && !c.set.params.promotedStrict) || !PromotionInLine(b)) return false;
    for (int sq = 0; sq < 64; ++sq) {
        const Piece piece = b.squares[sq];
        if (ColourOf(piece) != kBlack || !IsFigure(piece) || (queensOnly && TypeOf(piece) != kQueen))
            continue;
        if (TraceOrigin(b, sq).promoted && HasSafeMove(b, sq)) return true;
    }
    return false;
}

// The main diagonal through `square`, as a test on other squares: 0 for a1-h8, 1 for h1-a8, -1 for none.
int MainDiagonal(int square) {
    if (FileOf(square) == RankOf(square)) return 0;
    return FileOf(square) + RankOf(square) == 7 ? 1 : -1;
}

bool OnMainDiagonal(int diagonal, int square) {
    return diagonal == 0 ? FileOf(square) == RankOf(square) : FileOf(square) + RankOf(square) == 7;
}

}  // namespace

// The listed black figures may move at most one square away from where they stood at the start.
// A move onto a square White attacks is let through (the figure is lost for Black), unless "EFF"
// asks for every figure to stay fixed without that exception.
bool BlockedFigureUnblocked(const TRuleContext& c) {
    const THeuristicParameters& p = c.set.params;
    if (!c.BlackMoved() || !IsFigure(c.Moved())) return false;
    const int origin = TraceOrigin(c.Before(), c.Move().from).square;
    if (!Listed(p, origin) || KingDistance(origin, c.Move().to) <= 1) return false;
    return p.dlfuEff || !AttackedBy(c.after, c.Move().to, kWhite);
}

// A black queen may give one safe check; the second means White's king is exposed to perpetual
// checks.
bool BlackQueenCheckedTwice(const TRuleContext& c) {
    if (!SafeQueenCheck(c.after)) return false;
    for (const TChessboard* p = c.after.previous; p && p->previous; p = p->previous)
        if (SafeQueenCheck(*p)) return true;
    return false;
}

bool PromotedQueenFree(const TRuleContext& c) {
    return PromotedFree(c, true);
}

bool PromotedFigureFree(const TRuleContext& c) {
    return PromotedFree(c, false);
}

// A White bishop standing on a main diagonal keeps to it; with a square given, it is the black
// piece that started there that may not leave its main diagonal.
bool MainDiagonalLeft(const TRuleContext& c) {
    const Square watched = c.set.params.mainDiagonalFigure;
    const TMove& m = c.Move();
    if (watched < 64) {
        const int diagonal = MainDiagonal(watched);
        return diagonal >= 0 && c.BlackMoved() && TraceOrigin(c.Before(), m.from).square == watched &&
               !OnMainDiagonal(diagonal, m.to);
    }
    if (c.BlackMoved() || c.Moved() != (kWhite | kBishop)) return false;
    const int diagonal = MainDiagonal(m.from);
    return diagonal >= 0 && !OnMainDiagonal(diagonal, m.to);
}

}  // namespace moremate
