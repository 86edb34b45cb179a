// Solving with the online tablebase on the loopback address: the answers settle the endgame, the
// keys are those found without them, and a record requiring the tablebase is satisfied only when
// it answered. White Kc6, Rb1, Black Ka8: mate in two by Kc6-c7 only.
#include <gtest/gtest.h>

#include "engine/lookup/tablebase_lookup.h"
#include "problems/solving/problem_solving.h"
#include "tests/problems/problem_text.h"
#include "tests/support/loopback_tablebase.h"
#include "tests/support/positions.h"
#include "tests/support/tablebase_answers.h"

namespace moremate {
namespace {

const std::string kFen = "k7/8/2K5/8/8/8/8/1R6 w - - 0 1";

std::map<std::string, std::string> RecordedAnswers() {
    const std::map<std::string, std::string> moves = {
        {"c6c7", R"("category":"loss","dtm":-2,"dtz":-2)"},
        {"b1b8", R"("category":"draw","dtm":null,"dtz":0)"},
        {"b1b7", R"("category":"draw","dtm":0,"dtz":0)"},
    };
    const std::string body =
        testing::AnswerBody(test::Directmate(kFen, 2), R"("category":"win","dtm":3,"dtz":3)", moves,
                            R"("category":"loss","dtm":null,"dtz":-5)");
    return {{kFen, body}};
}

struct TTablebaseRun {
    testing::CTempFolder folder;
    CTablebaseCache cache{folder.Path(), false};
    CRecordingReporter reporter;
    CLiChess liChess;
    explicit TTablebaseRun(const std::string& url)
        : liChess({.sURL = url, .nTimeoutMs = 5000, .bWarnOnRepetition = false, .nLanguageId = kEnglish},
                  cache, reporter) {}
};

TProblemReport Solve(const ProblemEntry& entry, CLiChess* tablebase, bool allSolutions) {
    CRunRegister reg(100'000);
    TSolveSettings settings;
    settings.allSolutions = allSolutions;
    settings.tablebase = tablebase;
    return SolvePreparedProblem(entry, settings, TOptions{}, reg, nullptr);
}

TEST(TablebaseSolving, SameKeysWithAndWithoutTheService) {
    testing::CLoopbackTablebase service(RecordedAnswers());
    const testing::CSilentPort refused(false);
    const ProblemEntry entry = testing::ReadOne("1 #2 RequiresSyzygy\n{\n FEN: " + kFen + "\n}\n");
    for (bool allSolutions : {false, true}) {
        TTablebaseRun online(service.URL("ok")), offline(refused.URL());
        const TProblemReport with = Solve(entry, &online.liChess, allSolutions);
        const TProblemReport without = Solve(entry, &offline.liChess, allSolutions);
        EXPECT_EQ(with.keysLong, std::vector<std::string>{"Kc6-c7"});
        EXPECT_EQ(with.keysLong, without.keysLong);
        EXPECT_TRUE(with.failedChecks.empty());
        EXPECT_EQ(without.failedChecks, std::vector<std::string>{"RequiresSyzygy not satisfied"});
    }
    EXPECT_EQ(service.Requests(), 2);
}

TEST(TablebaseSolving, AnswersSettleTheFirstMovesBeforeTheSearch) {
    testing::CLoopbackTablebase service(RecordedAnswers());
    TTablebaseRun online(service.URL("ok"));
    const ProblemEntry entry = testing::ReadOne("1 #2\n{\n FEN: " + kFen + "\n}\n");
    CRunRegister settled(100'000), fresh(100'000);
    CTablebaseLookup(online.liChess, settled, test::Directmate(kFen, 2), 1).Wait();
    TSolveSettings settings;
    settings.allSolutions = true;
    const TProblemReport withFacts = SolvePreparedProblem(entry, settings, TOptions{}, settled, nullptr);
    const TProblemReport searched = SolvePreparedProblem(entry, settings, TOptions{}, fresh, nullptr);
    EXPECT_EQ(withFacts.keysLong, searched.keysLong);
    EXPECT_LT(withFacts.nodes, searched.nodes);
}

}  // namespace
}  // namespace moremate
