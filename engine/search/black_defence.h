// Black's defence: in a position with Black to move, the replies that refute the mate within the
// half-moves left, or else those that put it off the longest, and the report text of the run.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "core/chessboard.h"
#include "mate_search.h"

namespace moremate {

struct TDefence {
    int replies = 0;                          // Black's legal moves
    std::vector<TMove> refutations;           // replies after which White has no mate in the moves left
    std::vector<TMove> best;                  // without a refutation: the replies that put mate off longest
    int mateIn = 0;                           // White's mate after the best replies, in half-moves
    std::vector<std::pair<TMove, int>> each;  // every reply with White's mate after it (0: none)
};

// `node` has Black to move and `node.movesLeft` half-moves to the end of the stipulation.
TDefence FindBlackDefence(TMateSearch& search, const TChessboard& node);

struct TLongestDefence {
    TMove move;      // null when a reply refutes the mate or Black has no move
    int mateIn = 0;  // White's quickest mate after it, in half-moves
};

// The reply of FindBlackDefence's best.front() with its mateIn, for less work: once a reply's mate
// is known, a later reply is only asked whether it lets mate come later, and its own mate is looked
// for only then.
TLongestDefence LongestDefence(TMateSearch& search, const TChessboard& node);

// "Mate in the requested stipulation was refuted with: ...", "Not found any defence against mate.
// The best looks: ...", "The only reply: ...", "No valid move found", with equivalent moves.
std::string DefenceText(const TChessboard& node, const TDefence& defence);

// The thorough report: every reply with White's mate after it, "Kb1 (#2)", or "Kb1 (no mate)",
// the longest resistance first.
std::string EveryReplyText(const TChessboard& node, const TDefence& defence);

}  // namespace moremate
