#include "move_ordering.h"

#include <algorithm>
#include <cstdlib>
#include <optional>

#include "core/gives_check.h"

namespace moremate {
namespace {

// Scores below this are told apart by a count per score.
constexpr int kCountedScores = 16;

// Stable insertion sort of `count` moves by descending score.
void InsertionSort(TMove* moves, int* score, int count) {
    for (int i = 1; i < count; ++i) {
        const TMove m = moves[i];
        const int s = score[i];
        int j = i - 1;
        for (; j >= 0 && score[j] < s; --j) {
            moves[j + 1] = moves[j];
            score[j + 1] = score[j];
        }
        moves[j + 1] = m;
        score[j + 1] = s;
    }
}

// Up to this many points for leaving Black no reply at all, fewer for each reply: less than a
// check's bonus, about a queen capture's.
constexpr int kMobilityPoints = 480;
constexpr int kPointsPerReply = 12;

int MobilityScore(const TChessboard& board, const TMove& m) {
    TBoardRoom child;
    PlayMove(board, m, child.board);
    return std::max(0, kMobilityPoints - kPointsPerReply * CountLegalMoves(child.board));
}

int HistoryPoints(const CMoveHistory* history, const TMove& m) {
    return history ? history->Points(m) : 0;
}

}  // namespace

// Most moves are quiet, with a small score (the king distance alone): those are counted out by
// score behind the few with a large one, which go through an insertion sort.
void SortByScore(TMoveList& list, int* score) {
    TMove small[256];
    uint8_t smallScore[256];
    int nOfScore[kCountedScores] = {};
    int nLarge = 0, nSmall = 0;
    for (int i = 0; i < list.count; ++i) {
        const int s = score[i];
        if (s >= 0 && s < kCountedScores) {
            ++nOfScore[s];
            small[nSmall] = list.moves[i];
            smallScore[nSmall++] = static_cast<uint8_t>(s);
        } else {
            list.moves[nLarge] = list.moves[i];
            score[nLarge++] = s;
        }
    }
    InsertionSort(list.moves, score, nLarge);
    int next[kCountedScores];  // where the next move of each small score goes, the highest first
    for (int s = kCountedScores - 1, at = nLarge; s >= 0; --s) {
        next[s] = at;
        at += nOfScore[s];
    }
    for (int k = 0; k < nSmall; ++k) list.moves[next[smallScore[k]]++] = small[k];
}

void OrderWhiteMoves(const TChessboard& board, TMoveList& list, const TKillerMoves& killers, bool checksOnly,
                     bool fewestRepliesFirst, TMoveList* checks, const CMoveHistory* history) {
    int score[256];
    int kept = 0;
    if (checks) checks->count = 0;
    const int blackKing = board.BlackKingSquare();
    const CCheckSquares checkSquares(board);
    for (int i = 0; i < list.count; ++i) {
        const TMove m = list.moves[i];
        const bool check = checkSquares.Gives(board, m);
        if (checksOnly && !check) continue;
        if (checks && check) checks->moves[checks->count++] = m;
        const int victim = MaterialValue(TypeOf(board.squares[m.to]));
        int s = killers.Rank(m) * 10000 + (check ? 1000 : 0) + victim * 50 +
                (m.PromotedType() == kQueen ? 300 : 0);
        s += 8 - KingDistance(m.to, blackKing) + HistoryPoints(history, m);
        if (fewestRepliesFirst) s += MobilityScore(board, m);
        list.moves[kept] = m;
        score[kept++] = s;
    }
    list.count = kept;
    SortByScore(list, score);
}

void OrderBlackMoves(const TChessboard& board, TMoveList& list, const TKillerMoves& killers, bool checksFirst,
                     const CMoveHistory* history) {
    constexpr int kCheckPoints = 30000;  // above the killers' 10000 and 20000
    int score[256];
    const std::optional<CCheckSquares> checkSquares =
        checksFirst ? std::optional<CCheckSquares>(board) : std::nullopt;
    for (int i = 0; i < list.count; ++i) {
        const TMove m = list.moves[i];
        score[i] = (checkSquares && checkSquares->Gives(board, m) ? kCheckPoints : 0) +
                   killers.Rank(m) * 10000 + MaterialValue(TypeOf(board.squares[m.to])) * 100 +
                   HistoryPoints(history, m) + (TypeOf(board.squares[m.from]) == kKing ? 50 : 0) +
                   (m.PromotedType() == kQueen ? 300 : 0);
    }
    SortByScore(list, score);
}

void PreferMoves(TMoveList& list, const std::vector<TMove>& preferred) {
    int front = 0;
    for (const TMove& wanted : preferred) {
        TMove* const end = list.moves + list.count;
        TMove* const found = std::find(list.moves + front, end, wanted);
        if (found == end) continue;
        std::rotate(list.moves + front, found, found + 1);
        ++front;
    }
}

}  // namespace moremate
