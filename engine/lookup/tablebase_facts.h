// Turns a tablebase answer about a White-to-move position into register facts. Only what the
// answer proves is stored: a mate whose distance the service gives (and which fits the half-moves
// left) as "mate within" that distance, a draw or a loss as "no mate" within the half-moves left.
// A win without a distance, an unknown value or an answer whose moves are not the position's own
// gives nothing: a wrong fact would give a wrong key.
#pragma once

#include "core/chessboard.h"
#include "engine/search/position_store.h"
#include "tablebase/tablebase_answer.h"

namespace moremate {

// Whether `answer` is about `node`: readable, White to move, and the service's moves are exactly
// the legal moves.
bool AnswerFits(const TChessboard& node, const TTablebaseAnswer& answer);

// Stores the facts of `answer` about `node` (White to move, its half-moves left the search's)
// and about the positions after White's moves; returns how many were stored.
int StoreTablebaseFacts(const TChessboard& node, const TTablebaseAnswer& answer, CPositionStore& store);

}  // namespace moremate
