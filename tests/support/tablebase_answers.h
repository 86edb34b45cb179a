// Recorded tablebase answers for tests, written in the service's format: the position's category
// and dtm, and one record per legal move, the moves named in `moves` with their own values and
// every other one with `otherMoves`.
#pragma once

#include <map>
#include <string>

#include "core/movegen.h"
#include "tablebase/tablebase_answer.h"

namespace moremate::testing {

// `values`: the keys and values of a record without braces, e.g. "\"category\":\"loss\",\"dtm\":-2".
inline std::string AnswerBody(const TChessboard& board, const std::string& values,
                              const std::map<std::string, std::string>& moves,
                              const std::string& otherMoves) {
    TMoveList legal;
    GenerateLegalMoves(board, legal);
    std::string records;
    for (int i = 0; i < legal.count; ++i) {
        const TMove& m = legal.moves[i];
        const std::string uci =
            UciText({.m_byFrom = m.from, .m_byTo = m.to, .m_byPromotion = m.PromotedType()});
        const auto own = moves.find(uci);
        if (!records.empty()) records += ',';
        records.append(R"({"uci":")").append(uci).append(R"(","san":"?",)");
        records.append(own == moves.end() ? otherMoves : own->second);
        records.append(R"(,"precise_dtz":null,"dtw":null})");
    }
    std::string body = R"({"checkmate":false,"stalemate":false,)";
    return body.append(values).append(R"(,"dtw":null,"moves":[)").append(records).append("]}");
}

}  // namespace moremate::testing
