// What a tablebase answer may and may not prove. The position: White Kc6, Rb1, Black Ka8, mate in
// two by Kc6-c7 (three plies); Rb1-b8+ gives the rook away and Rb1-b7 stalemates.
#include <gtest/gtest.h>

#include "engine/lookup/tablebase_facts.h"
#include "tablebase/answer_reader.h"
#include "tests/engine/map_store.h"
#include "tests/support/positions.h"
#include "tests/support/tablebase_answers.h"

namespace moremate {
namespace {

const char* kFen = "k7/8/2K5/8/8/8/8/1R6 w - - 0 1";
const char* kWin = R"("category":"loss","dtm":null,"dtz":-5)";  // White wins, distance unknown
const std::map<std::string, std::string> kMoves = {
    {"c6c7", R"("category":"loss","dtm":-2,"dtz":-2)"},
    {"b1b8", R"("category":"draw","dtm":null,"dtz":0)"},
    {"b1b7", R"("category":"draw","dtm":0,"dtz":0)"},
};

TChessboard After(const TChessboard& root, const std::string& move) {
    TChessboard child;
    MakeMove(root, move, child);
    return child;
}

TEST(TablebaseFacts, StoreWhatTheAnswerProvesAndNothingElse) {
    const TChessboard root = test::Directmate(kFen, 2);
    const struct {
        const char* name;
        std::string values;                        // the position's own
        std::map<std::string, std::string> moves;  // the moves' own
        int halfMoves;
        int facts;
        uint8_t root, key, giveaway, other;  // the register's answers afterwards
    } cases[] = {
        {"mate and draws", R"("category":"win","dtm":3)", kMoves, 3, 4, kMate, kMate, kNoMate,
         kUnknownResult},
        {"mate too long for the stipulation", R"("category":"win","dtm":5)", kMoves, 3, 3, kUnknownResult,
         kMate, kNoMate, kUnknownResult},
        {"mate without a distance", R"("category":"win","dtm":null)", kMoves, 3, 3, kUnknownResult, kMate,
         kNoMate, kUnknownResult},
        {"a distance of the wrong parity", R"("wdl":2,"dtm":4)", kMoves, 3, 3, kUnknownResult, kMate, kNoMate,
         kUnknownResult},
        {"a win that may be none", R"("category":"maybe-win","dtm":3)", kMoves, 3, 3, kUnknownResult, kMate,
         kNoMate, kUnknownResult},
        {"a drawn position",
         R"("category":"draw","dtm":null)",
         {},
         3,
         1,
         kNoMate,
         kUnknownResult,
         kUnknownResult,
         kUnknownResult},
        {"one move more than the position has",
         R"("category":"win","dtm":3)",
         {{"c6c7", kMoves.at("c6c7")}, {"a1a2", kWin}},
         3,
         0,
         kUnknownResult,
         kUnknownResult,
         kUnknownResult,
         kUnknownResult},
    };
    for (const auto& c : cases) {
        test::CMapStore store;
        TChessboard node = root;
        node.movesLeft = static_cast<int16_t>(c.halfMoves);
        std::string body = testing::AnswerBody(node, c.values, c.moves, kWin);
        if (c.moves.contains("a1a2"))
            body.insert(body.rfind(']'), std::string(R"(,{"uci":"a1a2",)") + kWin + "}");
        EXPECT_EQ(StoreTablebaseFacts(node, ReadTablebaseAnswer(body), store), c.facts) << c.name;
        EXPECT_EQ(store.Lookup(node, c.halfMoves), c.root) << c.name;
        EXPECT_EQ(store.Lookup(After(node, "Kc6-c7"), c.halfMoves - 1), c.key) << c.name;
        EXPECT_EQ(store.Lookup(After(node, "Rb1-b8"), c.halfMoves - 1), c.giveaway) << c.name;
        EXPECT_EQ(store.Lookup(After(node, "Rb1-b7"), c.halfMoves - 1), c.giveaway) << c.name;
        EXPECT_EQ(store.Lookup(After(node, "Rb1-h1"), c.halfMoves - 1), c.other) << c.name;
    }
}

TEST(TablebaseFacts, NoneForBlackToMoveOrAnUnreadableAnswer) {
    test::CMapStore store;
    const TChessboard black = test::Board("k7/8/2K5/8/8/8/8/1R6 b - - 0 1");
    EXPECT_EQ(StoreTablebaseFacts(black, ReadTablebaseAnswer(R"({"category":"draw","moves":[]})"), store), 0);
    EXPECT_EQ(StoreTablebaseFacts(test::Directmate(kFen, 2), TTablebaseAnswer{}, store), 0);
    EXPECT_EQ(store.Size(), 0u);
}

}  // namespace
}  // namespace moremate
