// The look-up thread against a service on the loopback address: which positions it asks on how
// many levels, and a stop that breaks off a query the service never answers.
#include <gtest/gtest.h>

#include <chrono>

#include "engine/lookup/tablebase_lookup.h"
#include "tests/engine/map_store.h"
#include "tests/support/loopback_tablebase.h"
#include "tests/support/positions.h"
#include "tests/support/tablebase_answers.h"
#include "tests/support/temp_folder.h"

namespace moremate {
namespace {

// White Kc6, Rb1, Black Ka8, mate in two; after Kc6-c7 Ka8-a7 White mates by Rb1-a1.
const std::string kRoot = "k7/8/2K5/8/8/8/8/1R6 w - - 0 1";
const std::string kLevelTwo = "8/k1K5/8/8/8/8/8/1R6 w - - 0 1";
const char* kWin = R"("category":"loss","dtm":null)";

std::map<std::string, std::string> Answers() {
    return {
        {kRoot, testing::AnswerBody(test::Board(kRoot), R"("category":"win","dtm":3)", {}, kWin)},
        {kLevelTwo, testing::AnswerBody(test::Board(kLevelTwo), R"("category":"win","dtm":1)",
                                        {{"b1a1", R"("category":"loss","dtm":0,"checkmate":true)"}}, kWin)}};
}

struct TClient {
    testing::CTempFolder folder;
    CTablebaseCache cache{folder.Path(), false};
    CRecordingReporter reporter;
    CLiChess liChess;
    TClient(const std::string& url, int timeoutMs)
        : liChess({.sURL = url, .nTimeoutMs = timeoutMs, .bWarnOnRepetition = true, .nLanguageId = kEnglish},
                  cache, reporter) {}
};

TEST(TablebaseLookup, AsksTheLevelsItIsGiven) {
    testing::CLoopbackTablebase service(Answers());
    const struct {
        std::string fen;
        int moves, levels;
        int answers;
        bool more;  // positions beyond the recorded ones asked
    } cases[] = {
        {kRoot, 2, 0, 0, false},
        {kRoot, 2, 1, 1, false},
        {kRoot, 2, 2, 2, true},
        {kRoot, 1, 2, 1, false},  // a mate in one has no second level
        {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w - - 0 1", 5, 2, 0, false},  // too many pieces
    };
    for (const auto& c : cases) {
        const int before = service.Requests();
        TClient client(service.URL("ok"), 1000);
        test::CMapStore store;
        CTablebaseLookup lookup(client.liChess, store, test::Directmate(c.fen, c.moves), c.levels);
        lookup.Wait();
        EXPECT_EQ(lookup.Answers(), c.answers) << c.fen << " " << c.levels;
        EXPECT_EQ(service.Requests() - before > c.answers, c.more) << c.fen << " " << c.levels;
        // Each position is asked once: a repeated one would be reported.
        for (const auto& report : client.reporter.Reports()) EXPECT_EQ(report.sText, kGetHTMLPageFailed);
    }
}

TEST(TablebaseLookup, AStopBreaksOffAQueryUnderWay) {
    const testing::CSilentPort silent(true);
    TClient client(silent.URL(), 10'000);
    test::CMapStore store;
    CTablebaseLookup lookup(client.liChess, store, test::Directmate(kRoot, 2), 1);
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    const auto start = std::chrono::steady_clock::now();
    lookup.Stop();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(1500));
    EXPECT_TRUE(client.reporter.Reports().empty());
    EXPECT_EQ(lookup.Answers(), 0);
}

}  // namespace
}  // namespace moremate
