// Rules for problems built on tempo play: a zugzwang position the line must come back to, and the
// white king's tempo triangle of the sea snake. Plus the reduction to precalculated positions.
#include <algorithm>
#include <cstring>
#include <vector>

#include "core/chess_exception.h"
#include "core/validation.h"
#include "engine/heuristics/line_facts.h"
#include "precalc/global/global_registers.h"
#include "rules.h"

namespace moremate {
namespace {

bool IsZugzwangPosition(const THeuristicParameters& p, const TChessboard& b) {
    return std::memcmp(p.zugzwangSquares, b.squares, 64) == 0;
}

}  // namespace

// The line is to reach the zugzwang position (Black to move) by White's move number "after move":
// a line whose White move of that number leaves another position, and which did not pass through
// the zugzwang position before, is doubtful.
bool ZugzwangPositionMissed(const TRuleContext& c) {
    const THeuristicParameters& p = c.set.params;
    if (!p.zugzwangSet || c.BlackMoved() || WhiteMovesPlayed(c.after) != p.zugzwangAfterMove) return false;
    for (const TChessboard* b = &c.after; b; b = b->previous)
        if (!b->WhiteToMove() && IsZugzwangPosition(p, *b)) return false;
    return true;
}

// Sea snake: from "only after" on, the white king loses its tempo on the triangle of the approach
// and turn-back squares and a third square next to both; it may not wander off it.
bool WhiteKingOffTriangle(const TRuleContext& c) {
    const TSeaSnake& s = c.set.params.seaSnake;
    if (c.BlackMoved() || c.Moved() != (kWhite | kKing) || s.approach >= 64 || s.turnBack >= 64) return false;
    if (WhiteMovesPlayed(c.after) <= s.onlyAfterMove) return false;
    const int to = c.Move().to;
    return KingDistance(to, s.approach) > 1 || KingDistance(to, s.turnBack) > 1;
}

// The position after the move with White's weakest pieces lifted off until its material is a
// precalculated type (White keeps one piece at least): when the data says that even so White has
// no mate within the half-moves left, the line is doubtful. Without data for the reduced type, or
// when Black's pieces alone are too many, the line goes on.
bool ReducedPositionHasNoMate(const TRuleContext& c) {
    TChessboard reduced = c.after;
    reduced.previous = nullptr;
    std::vector<int> white;
    int pieces = 0;
    for (int sq = 0; sq < 64; ++sq) {
        const Piece p = reduced.squares[sq];
        if (p == kEmpty) continue;
        ++pieces;
        if (ColourOf(p) == kWhite && TypeOf(p) != kKing) white.push_back(sq);
    }
    std::stable_sort(white.begin(), white.end(), [&reduced](int a, int b) {
        return MaterialValue(TypeOf(reduced.squares[a])) < MaterialValue(TypeOf(reduced.squares[b]));
    });
    size_t lifted = 0;
    for (; pieces > kMaxPrecalcPieces && lifted + 1 < white.size(); ++lifted, --pieces)
        reduced.squares[white[lifted]] = kEmpty;
    if (pieces > kMaxPrecalcPieces || lifted == 0) return false;
    try {
        ValidateOnLine(reduced);
    } catch (const ChessException&) {
        return false;
    }
    if (reduced.KingAttacker(Opponent(reduced.ToMove())) != -1) return false;
    TGlobalRegister* reg = TGlobalRegisters::Instance().Find(reduced);
    const int halfMoves = reg ? reg->HalfMovesToMate(reduced) : kStoredUnknown;
    return halfMoves == kStoredNoMate || halfMoves > reduced.movesLeft;
}

}  // namespace moremate
