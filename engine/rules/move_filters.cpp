// Move filters judged on the move itself and the position right after it. A position is played
// only for quiet moves that a filter has to look at more closely.
#include <algorithm>

#include "core/attacks.h"
#include "core/gives_check.h"
#include "engine/heuristics/line_facts.h"
#include "move_filters.h"

namespace moremate {
namespace {

bool Quiet(const TChessboard& node, const CCheckSquares& checks, const TMove& m) {
    return node.squares[m.to] == kEmpty && !m.PromotedType() && !checks.Gives(node, m);
}

// A figure moved where Black attacks it and White does not defend it.
bool PutsFigureEnPrise(const TChessboard& node, const TMove& m) {
    if (!IsFigure(node.squares[m.from])) return false;
    TChessboard child;
    PlayMove(node, m, child);
    return AttackedBy(child, m.to, kBlack) && !AttackedBy(child, m.to, kWhite);
}

// A figure or the king stepping away from the black king.
bool Passive(const TChessboard& node, const TMove& m) {
    if (TypeOf(node.squares[m.from]) == kPawn) return false;
    const int king = node.BlackKingSquare();
    return KingDistance(m.to, king) > KingDistance(m.from, king);
}

// The square colour (parity) White avoids, or -1 when the mode names none.
int AvoidedColour(const TFilterContext& c) {
    switch (c.set.params.colourMode) {
        case TColourMode::WhiteSquaresOnly:
            return 0;
        case TColourMode::BlackSquaresOnly:
            return 1;
        case TColourMode::SeparatedBlackBishop:
            for (int sq = 0; sq < 64; ++sq)
                if (c.node.squares[sq] == (kBlack | kBishop)) return SquareColour(sq);
            return -1;
        case TColourMode::None:
            break;
    }
    return -1;
}

// The black figure that the key figure on `key` pins against the black king, or -1.
int PinnedBy(const TChessboard& b, int key) {
    const int king = b.BlackKingSquare();
    const int df = FileOf(king) - FileOf(key), dr = RankOf(king) - RankOf(key);
    const bool straight = df == 0 || dr == 0, diagonal = df == dr || df == -dr;
    const uint8_t type = TypeOf(b.squares[key]);
    if (!(straight && (type & kRook)) && !(diagonal && !straight && (type & kBishop))) return -1;
    const int step = 8 * ((dr > 0) - (dr < 0)) + ((df > 0) - (df < 0));
    int pinned = -1;
    for (int sq = key + step; sq != king; sq += step) {
        if (b.squares[sq] == kEmpty) continue;
        if (pinned >= 0 || ColourOf(b.squares[sq]) != kBlack) return -1;
        pinned = sq;
    }
    return pinned;
}

}  // namespace

bool SkipWorstWhiteMoves(const TFilterContext& c, TMoveList& moves) {
    if (!c.node.WhiteToMove()) return false;
    const bool passive = c.set.params.skipPassive;
    const CCheckSquares checks(c.node);
    return DropMoves(moves, [&](const TMove& m) {
        return Quiet(c.node, checks, m) && (passive ? Passive(c.node, m) : PutsFigureEnPrise(c.node, m));
    });
}

// White's pieces (pawns excepted: they cannot choose their colour) keep to one colour of squares.
// Black's bishops on the other colour cannot touch that play, so their moves are skipped, as if
// Black passed; a bishop keeps its moves when Black has no others.
bool KeepToOneColour(const TFilterContext& c, TMoveList& moves) {
    const int avoided = AvoidedColour(c);
    if (avoided < 0) return false;
    const uint8_t* sq = c.node.squares;
    if (c.node.WhiteToMove())
        return DropMoves(moves, [&](const TMove& m) {
            return TypeOf(sq[m.from]) != kPawn && SquareColour(m.to) == avoided;
        });
    const auto idleBishop = [&](const TMove& m) {
        return sq[m.from] == (kBlack | kBishop) && SquareColour(m.from) == avoided;
    };
    const bool othersLeft =
        std::any_of(moves.begin(), moves.end(), [&](const TMove& m) { return !idleBishop(m); });
    return othersLeft && DropMoves(moves, idleBishop);
}

// While the black king cannot move, the key figure holds its pin: none of its moves is searched
// but a capture of the pinned figure on a square Black does not attack; other White pieces do not
// take the pinned figure where Black can retake.
bool KeepKeyFigurePinning(const TFilterContext& c, TMoveList& moves) {
    const int key = c.set.params.keyWhiteFigure;
    const TChessboard& b = c.node;
    if (!b.WhiteToMove() || key >= 64 || !IsFigure(b.squares[key]) || ColourOf(b.squares[key]) != kWhite)
        return false;
    if (BlackKingFlightSquares(b) > 0) return false;
    const int pinned = PinnedBy(b, key);
    return DropMoves(moves, [&](const TMove& m) {
        const bool takesPinned = pinned >= 0 && m.to == pinned;
        if (m.from != key && !takesPinned) return false;
        if (!takesPinned) return true;
        TChessboard child;
        PlayMove(b, m, child);
        return AttackedBy(child, m.to, kBlack);
    });
}

}  // namespace moremate
