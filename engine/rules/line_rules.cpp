// Rules about lines that White's pieces are to hold and pieces that are to stand still. They judge
// only the move just played, plus one scan of a file or diagonal when a holder leaves it.
#include <cstdlib>

#include "engine/heuristics/line_facts.h"
#include "rules.h"

namespace moremate {
namespace {

bool HoldsFile(Piece piece) {
    return piece == (kWhite | kRook) || piece == (kWhite | kQueen);
}
bool HoldsDiagonal(Piece piece) {
    return piece == (kWhite | kBishop) || piece == (kWhite | kQueen);
}

// The key diagonal through its two squares, when they do lie on one diagonal.
struct TDiagonal {
    int square, fileStep, rankStep;
    bool Contains(int sq) const {
        const int df = FileOf(sq) - FileOf(square), dr = RankOf(sq) - RankOf(square);
        return df * rankStep == dr * fileStep;
    }
};

bool KeyDiagonal(const THeuristicParameters& p, TDiagonal& d) {
    const uint8_t a = p.keyDiagonal[0], b = p.keyDiagonal[1];
    if (a >= 64 || b >= 64) return false;
    const int df = FileOf(b) - FileOf(a), dr = RankOf(b) - RankOf(a);
    if (df == 0 || std::abs(df) != std::abs(dr)) return false;
    d = TDiagonal{a, df > 0 ? 1 : -1, dr > 0 ? 1 : -1};
    return true;
}

// White moved a piece off the set of squares `on`, and no piece that can hold it is left on it.
template <typename OnLine, typename Holds>
bool LineAbandoned(const TRuleContext& c, OnLine on, Holds holds) {
    if (c.BlackMoved() || !on(c.Move().from) || on(c.Move().to)) return false;
    for (int sq = 0; sq < 64; ++sq)
        if (on(sq) && holds(c.after.squares[sq])) return false;
    return true;
}

}  // namespace

// A White rook or queen is to hold the key file.
bool KeyLineAbandoned(const TRuleContext& c) {
    const int file = c.set.params.keyLine;
    return file < 8 && LineAbandoned(
                           c, [file](int sq) { return FileOf(sq) == file; }, HoldsFile);
}

// A White bishop or queen is to hold the key diagonal.
bool KeyDiagonalAbandoned(const TRuleContext& c) {
    TDiagonal d;
    return KeyDiagonal(c.set.params, d) && LineAbandoned(
                                               c, [d](int sq) { return d.Contains(sq); }, HoldsDiagonal);
}

// The sweeping rook works along its rank, waiting for black pawns to advance: it may leave the
// rank only to capture a black pawn.
bool RookLeftSweepLine(const TRuleContext& c) {
    if (c.BlackMoved() || c.Moved() != (kWhite | kRook)) return false;
    const TMove& m = c.Move();
    return RankOf(m.from) != RankOf(m.to) && CapturedPiece(c.after) != (kBlack | kPawn);
}

// Single queen mate: every piece but the White queen and the black king is tied to its post, so a
// move of any other piece breaks the picture the mate relies on.
bool TiedPieceMoved(const TRuleContext& c) {
    const Piece moved = c.Moved();
    return moved != (kWhite | kQueen) && moved != (kBlack | kKing);
}

}  // namespace moremate
