// The reading rules of the service's answer, each case a body and the answer it must give.
#include <gtest/gtest.h>

#include "core/types.h"
#include "tablebase/answer_reader.h"

namespace moremate {
namespace {

TTablebaseAnswer Position(uint8_t wdl, int16_t dtm, uint8_t dtz, std::vector<TTablebaseMove> moves = {}) {
    TTablebaseAnswer answer{.m_byWdl = wdl, .m_shDtm = dtm, .m_byDtz = dtz, .m_nMoves = 0, .m_vMoves = {}};
    answer.m_nMoves = static_cast<int>(moves.size());
    answer.m_vMoves = std::move(moves);
    return answer;
}

TTablebaseMove Move(int from, int to, uint8_t promotion, uint8_t wdl, int16_t dtm, uint8_t dtz) {
    return {.m_byFrom = static_cast<uint8_t>(from),
            .m_byTo = static_cast<uint8_t>(to),
            .m_byPromotion = promotion,
            .m_byWdl = wdl,
            .m_shDtm = dtm,
            .m_byDtz = dtz};
}

constexpr int e7 = 52, e8 = 60, h7 = 55, h8 = 63, g7 = 54, f6 = 45;
const TTablebaseAnswer kUnreadable;

// Today's answer of the service, keys it adds (precise_dtz, dtw, san...) included.
const char* kTodaysAnswer = R"({"checkmate":false,"stalemate":false,"variant_win":false,"variant_loss":false,
"insufficient_material":false,"dtz":1,"precise_dtz":1,"dtc":null,"dtm":17,"dtw":null,"category":"win",
"moves":[{"uci":"h7h8q","san":"h8=Q+","zeroing":true,"checkmate":false,"stalemate":false,"variant_win":false,
"variant_loss":false,"insufficient_material":false,"dtz":-2,"precise_dtz":-2,"dtc":null,"dtm":-16,"dtw":null,
"category":"loss"},{"uci":"g7f6","san":"Kf6","zeroing":false,"checkmate":false,"stalemate":false,
"variant_win":false,"variant_loss":false,"insufficient_material":false,"dtz":0,"precise_dtz":0,"dtc":null,
"dtm":null,"dtw":null,"category":"draw"}]})";

TEST(AnswerReader, ReadsEveryRule) {
    const struct {
        const char* name;
        std::string body;
        TTablebaseAnswer expected;
    } cases[] = {
        {"today's answer", kTodaysAnswer,
         Position(kWdlWin, 17, 1,
                  {Move(h7, h8, kQueen, kWdlLoss, -16, 2), Move(g7, f6, 0, kWdlDraw, kNoDtm, 0)})},
        {"wdl 2 is a win", R"({"wdl":2,"dtm":5,"dtz":3,"moves":[]})", Position(kWdlWin, 5, 3)},
        {"wdl -2 is a loss", R"({"wdl": -2, "moves": []})", Position(kWdlLoss, kNoDtm, kNoDtz)},
        {"wdl 0 is a draw", R"({"wdl":0})", Position(kWdlDraw, kNoDtm, kNoDtz)},
        {"wdl null is unknown", R"({"wdl":null,"category":"win"})", Position(kWdlUnknown, kNoDtm, kNoDtz)},
        {"wdl before category", R"({"category":"loss","wdl":1})", Position(kWdlWin, kNoDtm, kNoDtz)},
        {"cursed win", R"({"category":"cursed-win"})", Position(kWdlWin, kNoDtm, kNoDtz)},
        {"blessed loss", R"({"category":  "blessed-loss"})", Position(kWdlLoss, kNoDtm, kNoDtz)},
        {"draw", R"({"category":"draw"})", Position(kWdlDraw, kNoDtm, kNoDtz)},
        {"maybe-win is unknown", R"({"category":"maybe-win"})", Position(kWdlUnknown, kNoDtm, kNoDtz)},
        {"category without quotes", R"({"category":win})", Position(kWdlUnknown, kNoDtm, kNoDtz)},
        {"neither wdl nor category", R"({"dtm":5,"dtz":3,"moves":[]})", kUnreadable},
        {"dtz -300", R"({"wdl":1,"dtz":-300})", Position(kWdlWin, kNoDtm, 255)},
        {"dtz 300", R"({"wdl":1,"dtz":300})", Position(kWdlWin, kNoDtm, 254)},
        {"dtz 255", R"({"wdl":1,"dtz":255})", Position(kWdlWin, kNoDtm, 254)},
        {"dtz 254", R"({"wdl":1,"dtz":254})", Position(kWdlWin, kNoDtm, 254)},
        {"dtz -255", R"({"wdl":1,"dtz":-255})", Position(kWdlWin, kNoDtm, 255)},
        {"dtz -7", R"({"wdl":-1,"dtz":-7})", Position(kWdlLoss, kNoDtm, 7)},
        {"dtz empty", R"({"wdl":1,"dtz":,"dtm":3})", Position(kWdlWin, 3, kNoDtz)},
        {"dtm null", R"({"category":"win","dtm":null,"dtz":4})", Position(kWdlWin, kNoDtm, 4)},
        {"dtm negative", R"({"category":"loss","dtm":-22})", Position(kWdlLoss, -22, kNoDtz)},
        {"dtm out of range", R"({"category":"loss","dtm":-40000})", Position(kWdlLoss, kNoDtm, kNoDtz)},
        {"the position's keys after its moves",
         R"({"moves":[{"uci":"e7e8q","category":"loss","dtm":-2,"dtz":-1}],"dtm":3,"category":"win"})",
         Position(kWdlWin, 3, kNoDtz, {Move(e7, e8, kQueen, kWdlLoss, -2, 1)})},
        {"a move's keys never stand for the position's",
         R"({"category":"win","moves":[{"uci":"e7e8q","category":"loss","dtm":-2,"dtz":-1}]})",
         Position(kWdlWin, kNoDtm, kNoDtz, {Move(e7, e8, kQueen, kWdlLoss, -2, 1)})},
        {"promotions",
         R"({"wdl":1,"moves":[{"uci":"e7e8r","wdl":-1,"dtm":-4},{"uci":"e7e8b","wdl":0,"dtm":null},
            {"uci":"e7e8n","wdl":0,"dtm":null},{"uci":"e7e8","wdl":0,"dtm":null}]})",
         Position(
             kWdlWin, kNoDtm, kNoDtz,
             {Move(e7, e8, kRook, kWdlLoss, -4, kNoDtz), Move(e7, e8, kBishop, kWdlDraw, kNoDtm, kNoDtz),
              Move(e7, e8, kKnight, kWdlDraw, kNoDtm, kNoDtz), Move(e7, e8, 0, kWdlDraw, kNoDtm, kNoDtz)})},
        {"a move's wdl before its category",
         R"({"wdl":1,"moves":[{"uci":"e7e8q","category":"draw","wdl":-3,"dtm":-2}]})",
         Position(kWdlWin, kNoDtm, kNoDtz, {Move(e7, e8, kQueen, kWdlLoss, -2, kNoDtz)})},
        {"a move's dtz is optional", R"({"wdl":1,"moves":[{"uci":"e7e8q","wdl":-1,"dtm":-2}]})",
         Position(kWdlWin, kNoDtm, kNoDtz, {Move(e7, e8, kQueen, kWdlLoss, -2, kNoDtz)})},
        {"promotion to a king", R"({"wdl":1,"moves":[{"uci":"e7e8k","wdl":-1,"dtm":-2}]})", kUnreadable},
        {"move text too short", R"({"wdl":1,"moves":[{"uci":"e7e","wdl":-1,"dtm":-2}]})", kUnreadable},
        {"move text off the board", R"({"wdl":1,"moves":[{"uci":"i7e8q","wdl":-1,"dtm":-2}]})", kUnreadable},
        {"move without dtm", R"({"wdl":1,"moves":[{"uci":"e7e8q","wdl":-1,"dtz":2}]})", kUnreadable},
        {"move without wdl or category", R"({"wdl":1,"moves":[{"uci":"e7e8q","dtm":-2}]})", kUnreadable},
        {"moves cut short", R"({"wdl":1,"moves":[{"uci":"e7e8q","wdl":-1,"dtm":-2})", kUnreadable},
        {"garbage", "<html><body>Bad gateway</body></html>", kUnreadable},
        {"empty body", "", kUnreadable},
    };
    for (const auto& c : cases) EXPECT_EQ(ReadTablebaseAnswer(c.body), c.expected) << c.name;
}

}  // namespace
}  // namespace moremate
