// Rules that only the engine's own look at the problem position sets: the blockade of Black's
// pawns, the key square of the black king's prison and the white king's tempo play in pawn
// endings. Each compares the position after White's move with the problem position.
#include "core/attacks.h"
#include "engine/heuristics/line_facts.h"
#include "rules.h"

namespace moremate {

// Black's pawns were all blocked at the start: a White move that frees one of them more than
// were free then gives up the blockade on which the mate rests.
bool BlackPawnFreed(const TRuleContext& c) {
    return !c.BlackMoved() && MobileBlackPawns(c.after) > MobileBlackPawns(c.root);
}

// The key square is the one door of the black king's prison, guarded by a single white piece. A
// quiet White move after which no White piece guards it while the king stands next to it opens
// the door. Checks are let through: the king is being driven.
bool KeySquareAbandoned(const TRuleContext& c) {
    const Square key = c.set.params.keySquare;
    const TChessboard& b = c.after;
    if (c.BlackMoved() || key >= 64 || b.InCheck() || KingDistance(key, b.BlackKingSquare()) != 1)
        return false;
    return ColourOf(b.squares[key]) != kBlack && !AttackedBy(b, key, kWhite);
}

// In a pawn ending of blocked pawns the white king wins the tempo on a triangle close to the
// black king: a king move that takes it farther from the black king than one step beyond the
// start distance is a walk away from the fight.
bool WhiteKingLeavesTempoFight(const TRuleContext& c) {
    if (c.BlackMoved() || c.Moved() != (kWhite | kKing)) return false;
    const int start = KingDistance(c.root.WhiteKingSquare(), c.root.BlackKingSquare());
    return KingDistance(c.after.WhiteKingSquare(), c.after.BlackKingSquare()) > start + 1;
}

}  // namespace moremate
