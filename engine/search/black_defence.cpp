#include "black_defence.h"

#include <algorithm>

#include "core/notation.h"

namespace moremate {
namespace {

std::string MovesText(const TChessboard& node, const std::vector<TMove>& moves, size_t from) {
    std::string text;
    for (size_t i = from; i < moves.size(); ++i)
        text += (text.empty() ? "" : ", ") + MoveToText(node, moves[i]);
    return text;
}

// The first move, then the others of equal value after "Equivalent moves: ".
std::string WithEquivalents(const TChessboard& node, const std::vector<TMove>& moves) {
    std::string text = MoveToText(node, moves.front());
    if (moves.size() > 1) text += "\nEquivalent moves: " + MovesText(node, moves, 1);
    return text;
}

// Whether White mates within `halfMoves` after a reply: the mate in two is asked for first, which
// most replies that put mate off no longer allow and which is cheap to find, then the mate within
// all the half-moves.
uint8_t MateWithin(TMateSearch& search, const TChessboard& child, int halfMoves) {
    TChessboard within = child;
    if (halfMoves > 3) {
        within.movesLeft = 3;
        const uint8_t r = search.FindForcedMate(within);
        if (r != kNoMate) return r;
    }
    within.movesLeft = static_cast<int16_t>(halfMoves);
    return search.FindForcedMate(within);
}

}  // namespace

TDefence FindBlackDefence(TMateSearch& search, const TChessboard& node) {
    TDefence defence;
    TMoveList moves;
    GenerateLegalMoves(node, moves);
    defence.replies = moves.count;
    for (const TMove& m : moves) {
        TChessboard child;
        PlayMove(node, m, child);
        const int mateIn = search.ShortestMate(child);
        defence.each.emplace_back(m, mateIn);
        if (mateIn == 0) {
            defence.refutations.push_back(m);
        } else if (mateIn > defence.mateIn) {
            defence.mateIn = mateIn;
            defence.best = {m};
        } else if (mateIn == defence.mateIn) {
            defence.best.push_back(m);
        }
    }
    return defence;
}

TLongestDefence LongestDefence(TMateSearch& search, const TChessboard& node) {
    TMoveList moves;
    GenerateLegalMoves(node, moves);
    TLongestDefence longest;
    for (const TMove& m : moves) {
        TChessboard child;
        PlayMove(node, m, child);
        int from = 1;
        if (longest.mateIn > 0) {
            const uint8_t r = MateWithin(search, child, longest.mateIn);
            if (r == kMate) continue;
            if (r == kNoMate) from = longest.mateIn + 2;
        }
        const int mateIn = search.ShortestMate(child, from);
        if (mateIn == 0) return {};
        if (mateIn > longest.mateIn) longest = {m, mateIn};
    }
    return longest;
}

std::string EveryReplyText(const TChessboard& node, const TDefence& defence) {
    std::vector<std::pair<TMove, int>> replies = defence.each;
    const auto resistance = [](int mateIn) { return mateIn == 0 ? 1 << 30 : mateIn; };
    std::stable_sort(replies.begin(), replies.end(), [&](const auto& a, const auto& b) {
        return resistance(a.second) > resistance(b.second);
    });
    std::string text = "Every reply:";
    for (const auto& [move, mateIn] : replies) {
        text += "\n";
        text += MoveToText(node, move);
        text += mateIn == 0 ? std::string(" (no mate)") : " (#" + std::to_string((mateIn + 1) / 2) + ")";
    }
    return text;
}

std::string DefenceText(const TChessboard& node, const TDefence& defence) {
    if (defence.replies == 0) return "No valid move found";
    if (!defence.refutations.empty()) {
        if (defence.replies == 1) return "The only reply: " + MoveToText(node, defence.refutations.front());
        return "Mate in the requested stipulation was refuted with: " +
               WithEquivalents(node, defence.refutations);
    }
    if (defence.replies == 1)
        return "The only reply (not a defence against mate) : " + MoveToText(node, defence.best.front());
    return "Not found any defence against mate. The best looks: " + WithEquivalents(node, defence.best);
}

}  // namespace moremate
