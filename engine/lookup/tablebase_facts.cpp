#include "tablebase_facts.h"

#include <algorithm>

#include "core/movegen.h"
#include "engine/search/mate_search.h"

namespace moremate {
namespace {

const TMove* Find(const TMoveList& legal, const TTablebaseMove& m) {
    const TMove* end = legal.moves + legal.count;
    const TMove* found = std::find(legal.moves, end, TMove{m.m_byFrom, m.m_byTo, m.m_byPromotion});
    return found == end ? nullptr : found;
}

// The service's moves, all legal here and as many as the legal moves: else the answer is not
// about this position.
bool MovesAgree(const TMoveList& legal, const TTablebaseAnswer& answer) {
    return answer.m_nMoves == legal.count &&
           std::all_of(answer.m_vMoves.begin(), answer.m_vMoves.end(),
                       [&legal](const TTablebaseMove& m) { return Find(legal, m) != nullptr; });
}

// The fact about a position from its side-to-move view (`wdl`, `dtm`), with `halfMoves` left.
// White to move wins by mating in an odd number of plies; Black to move loses by being mated in
// an even number.
bool StoreFact(const TChessboard& node, uint8_t wdl, int16_t dtm, CPositionStore& store) {
    if (!SquaresTellAll(node)) return false;
    const int halfMoves = node.movesLeft;
    const bool white = node.WhiteToMove();
    const uint8_t whiteLoses = white ? kWdlLoss : kWdlWin;
    if (wdl == kWdlDraw || wdl == whiteLoses) {
        store.Store(node, halfMoves, kNoMate);
        return true;
    }
    const uint8_t whiteWins = white ? kWdlWin : kWdlLoss;
    if (wdl != whiteWins || dtm == kNoDtm) return false;
    const int plies = white ? dtm : -dtm;
    if (plies <= 0 || plies > halfMoves || (plies & 1) != (halfMoves & 1)) return false;
    store.Store(node, plies, kMate);
    return true;
}

}  // namespace

bool AnswerFits(const TChessboard& node, const TTablebaseAnswer& answer) {
    TMoveList legal;
    GenerateLegalMoves(node, legal);
    return node.WhiteToMove() && answer.Readable() && MovesAgree(legal, answer);
}

int StoreTablebaseFacts(const TChessboard& node, const TTablebaseAnswer& answer, CPositionStore& store) {
    if (!AnswerFits(node, answer)) return 0;
    TMoveList legal;
    GenerateLegalMoves(node, legal);
    int facts = StoreFact(node, answer.m_byWdl, answer.m_shDtm, store) ? 1 : 0;
    if (node.movesLeft < 2) return facts;
    for (const TTablebaseMove& m : answer.m_vMoves) {
        TChessboard child;
        PlayMove(node, *Find(legal, m), child);
        facts += StoreFact(child, m.m_byWdl, m.m_shDtm, store) ? 1 : 0;
    }
    return facts;
}

}  // namespace moremate
