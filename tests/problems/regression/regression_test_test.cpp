#include "problems/regression/regression_test.h"

#include <gtest/gtest.h>

#include <regex>
#include <tuple>

#include "core/chessboard_id.h"
#include "problems/annotations/mirrored_entry.h"
#include "problems/format/collection_reader.h"
#include "problems/regression/script.h"
#include "problems/regression/solved_problems_db.h"
#include "tests/problems/problem_text.h"
#include "tests/support/positions.h"

namespace moremate {
namespace {

// Problem 2 of small.cp three times: tested both ways, only as its mirror, never mirrored.
const char* const kMirrorCollection =
    "2 #3\n{\n FEN: 8/8/8/8/P7/3PQ3/3K4/k7 w - - 0 1\n Answer: d2-c1, d2-c2, d2-c3, e3-b6\n}\n"
    "5 #3 MirrorOnly\n{\n FEN: 8/8/8/8/P7/3PQ3/3K4/k7 w - - 0 1\n Answer: d2-c1, d2-c2, d2-c3, e3-b6\n}\n"
    "6 #3 NoMirror\n{\n FEN: 8/8/8/8/P7/3PQ3/3K4/k7 w - - 0 1\n Answer: d2-c1, d2-c2, d2-c3, e3-b6\n}\n";

class RegressionTestTest : public ::testing::Test {
  protected:
    TRegressionTestResult Run(const std::vector<ProblemEntry>& entries,
                              const std::filesystem::path& collection) {
        m_settings.logFolder = m_folder.Path();
        return RunRegressionTest(entries, collection, m_settings, m_solve, m_options,
                                 [this](const std::string& line) { m_printed += line; });
    }
    TRegressionTestResult RunFile(const std::filesystem::path& file) {
        std::vector<ProblemEntry> entries;
        ReadCollectionFile(file, entries, false, {});
        return Run(entries, file);
    }
    TScriptResult RunScript(const std::string& text, const std::filesystem::path& folder = testing::kData) {
        m_env.testSettings.logFolder = m_folder.Path();
        m_env.baseFolder = folder;
        return RunScriptText(text, m_env);
    }
    std::string ScriptError(const std::string& text) {
        return test::ErrorOf([&] { RunScript(text); });
    }

    testing::CTempFolder m_folder;
    TRegressionTestSettings m_settings;
    TSolveSettings m_solve;
    TOptions m_options;
    std::string m_printed;
    TScriptEnvironment m_env{m_options, {}, {}, {}, [this](const std::string& line) { m_printed += line; }};
};

TEST_F(RegressionTestTest, ShortTestWritesHeadingAndOneLinePerProblem) {
    m_settings.bShort = true;
    m_solve.timeLimitSeconds = 5;
    const TRegressionTestResult result = RunFile(testing::kData / "small.cp");
    EXPECT_TRUE(result.bAnyFailed);  // the selfmate cannot be solved
    EXPECT_TRUE(std::regex_match(result.logFile.filename().string(),
                                 std::regex(R"(RegressionTest_\d{4}_\d\d_\d\d__\d\d_\d\d_\d\d\.log)")));
    const std::string log = testing::FileText(result.logFile);
    EXPECT_EQ(log, m_printed);
    for (
        const char* line :
        {R"(^Short regression test \(64 sec\.\) started of \d{4}-\d\d-\d\d \d\d:\d\d:\d\d, file .*small\.cp\n)",
         R"(\n\[SnglSolution, 1thrd\(s\)\] Test #2 M1 ok \(\d+ msec\)\.\n)",
         R"(\n\[SnglSolution, 1thrd\(s\)\] Prob\.#3 M1 No solution \(\d+ msec\)\.\n)"})
        EXPECT_TRUE(std::regex_search(log, std::regex(line))) << line;
    EXPECT_NE(log.find("\nFailed: [SnglSolution, 1thrd(s)] Test #4 M1 failed: Only mate problems (type=1) "
                       "supported currently.\n"),
              std::string::npos);
    EXPECT_EQ(m_solve.timeLimitSeconds, 5);  // the caller's limit is back
}

TEST_F(RegressionTestTest, WrongAnswerFailsWithFoundAndExpectedKeys) {
    m_options.m_nShortRegTestSeconds = 30;
    m_settings.bShort = true;
    m_solve.allSolutions = true;
    const TRegressionTestResult result = RunFile(testing::kData / "wrong_answer.cp");
    EXPECT_TRUE(result.bAnyFailed);
    const std::string log = testing::FileText(result.logFile);
    EXPECT_TRUE(log.starts_with("Short regression test (30 sec.) started of ")) << log;
    EXPECT_NE(
        log.find(
            "\nFailed: [AllSolutions, 1thrd(s)] Test #7 M1 failed:\n\tfound:\na7-f2\n\tshould be:\na7-a1\n"),
        std::string::npos)
        << log;
}

TEST_F(RegressionTestTest, MirroredPositionsFollowNoMirrorAndMirrorOnly) {
    m_settings.bWithMirror = true;
    m_settings.databaseFolder = m_folder.File(kSolvedProblemsFolder);
    const std::vector<ProblemEntry> entries = testing::ReadAll(kMirrorCollection);
    const TRegressionTestResult result = Run(entries, "mirror.cp");
    EXPECT_FALSE(result.bAnyFailed) << m_printed;
    const std::regex line(R"((Mirror: )?\[SnglSolution, 1thrd\(s\)\] Test #(\d) M1 ok \(\d+ msec\)\.)");
    std::vector<std::string> tested;
    for (std::sregex_iterator it(m_printed.begin(), m_printed.end(), line), end; it != end; ++it)
        tested.push_back((*it)[1].str() + (*it)[2].str());
    EXPECT_EQ(tested, (std::vector<std::string>{"2", "Mirror: 2", "Mirror: 5", "6"}));

    const std::vector<TSolvedProblemRow> rows =
        ReadSolvedProblems(m_folder.File(kSolvedProblemsFolder) / "mirror.cpdb");
    ASSERT_EQ(rows.size(), 4u);
    EXPECT_EQ(rows[0].nProblem, 2u);
    EXPECT_EQ(std::make_tuple(rows[0].bMirrored, rows[1].bMirrored, rows[2].bMirrored),
              std::make_tuple(false, true, true));
    EXPECT_EQ(rows[0].sPositionId, ToAlphanum6(EncodeId(entries[0].m_position.board.squares)));
    EXPECT_EQ(rows[1].sPositionId, ToAlphanum6(EncodeId(MirroredEntry(entries[0]).m_position.board.squares)));
    EXPECT_EQ(rows[0].sStipulation, "#3");
    EXPECT_EQ(rows[0].sResult, "solved");
    EXPECT_NE(std::string("d2-c1 d2-c2 d2-c3 e3-b6").find(rows[0].sKeys), std::string::npos);
    EXPECT_NE(std::string("e2-f1 e2-f2 e2-f3 d3-g6").find(rows[1].sKeys), std::string::npos);
    EXPECT_EQ(rows[0].sSettings, "[SnglSolution, 1thrd(s)] time limit 0 sec.");
    EXPECT_EQ(rows[2].nProblem, 5u);
}

TEST_F(RegressionTestTest, ChecksAndExpectedOrdersOfBothPositions) {
    m_settings.bWithMirror = true;
    const TRegressionTestResult result = RunFile(testing::kData / "checks.cp");
    EXPECT_TRUE(result.bAnyFailed);
    const std::string log = testing::FileText(result.logFile);
    // The variants, the sort indications and the line of LookForBestDefencesAfter are mirrored too.
    for (
        const char* ok :
        {R"(\n\[SnglSolution, 1thrd\(s\)\] Test #1 M1 ok \(\d+ msec\)\.\n)",
         R"(\nMirror: \[SnglSolution, 1thrd\(s\)\] Test #1 M1 ok \(\d+ msec\)\.\n)",
         R"(\n\[SnglSolution, 1thrd\(s\)\] Test #4 M1 ok \(\d+ msec\) - ExpectedSortWhiteMovesOnly\.\n)",
         R"(\nMirror: \[SnglSolution, 1thrd\(s\)\] Test #4 M1 ok \(\d+ msec\) - ExpectedSortWhiteMovesOnly\.\n)"})
        EXPECT_TRUE(std::regex_search(log, std::regex(ok))) << ok << "\n" << log;
    for (const char* failed :
         {"\nFailed: [SnglSolution, 1thrd(s)] Test #2 M1 failed: Requires clause not satisfied\n"
          "Failed: [SnglSolution, 1thrd(s)] Test #2 M1 failed: RequiresSyzygy not satisfied\n"
          "Failed: [SnglSolution, 1thrd(s)] Test #2 M1 failed: Error in best defence:\n\nexpected "
          "d7-c8\nfound d7-e8\n",
          "\nFailed: Mirror: [SnglSolution, 1thrd(s)] Test #2 M1 failed: Error in bestDefences "
          "(LookForBestDefencesAfter):\n\n expected defence but not found by engine: e7-f8\n",
          "\nFailed: Mirror: [SnglSolution, 1thrd(s)] Test #3 M1 failed: Error in auxMate:\n\nexpected "
          "f8-f3\n",
          "\nFailed: [SnglSolution, 1thrd(s)] Test #5 M1 failed:\n\tfound:\ne8-e5, c8-c2\n\tshould "
          "be:\nc8-c2, e8-e5\n"})
        EXPECT_NE(log.find(failed), std::string::npos) << failed << "\n" << log;
}

TEST(RegressionTestInLoop, AskedOnlyWhenTheOptionIsOn) {
    CRecordingReporter reporter;
    TOptions options;
    EXPECT_FALSE(RunInLoop(options, {&reporter, kEnglish}));
    EXPECT_TRUE(reporter.Reports().empty());
    options.m_bRunRegressionTestInLoop = true;
    reporter.QueueAnswer(ReportAnswer::No);
    EXPECT_FALSE(RunInLoop(options, {&reporter, kEnglish}));
    reporter.QueueAnswer(ReportAnswer::Yes);
    EXPECT_TRUE(RunInLoop(options, {&reporter, kPolish}));
    ASSERT_EQ(reporter.Reports().size(), 2u);
    EXPECT_EQ(reporter.Reports()[0].sText,
              "Ini setting RunRegressionTestInLoop is ON.\n\nDo you want to use it?");
    EXPECT_EQ(reporter.Reports()[1].sTitle, "Pytanie");
}

TEST(MirroredEntry, ReflectsBoardAnswerAndDescriptionAndLosesCastling) {
    const ProblemEntry entry = testing::ReadOne(
        "1 #2\n{\n Description: castling\n FEN: 8/Q7/8/8/8/8/8/2k1K2R w K - 0 1\n Answer: a7-f2\n}\n");
    const ProblemEntry mirrored = MirroredEntry(entry);
    for (int file = 0; file < 8; ++file)
        EXPECT_EQ(mirrored.m_position.board.squares[MakeSquare(7 - file, 6)],
                  entry.m_position.board.squares[MakeSquare(file, 6)]);
    EXPECT_EQ(mirrored.m_position.board.WhiteKingSquare(), MakeSquare(3, 0));
    EXPECT_EQ(mirrored.m_position.board.castling, 0);
    ASSERT_EQ(mirrored.m_vAnswer.size(), 1u);
    EXPECT_EQ(mirrored.m_vAnswer[0],
              (TMove{static_cast<Square>(MakeSquare(7, 6)), static_cast<Square>(MakeSquare(2, 1)), 0}));
    EXPECT_EQ(mirrored.m_sDescription, "Mirror: castling");
    EXPECT_EQ(MirroredEntry(mirrored), entry);  // toggled back, rights restored from the position
}

TEST_F(RegressionTestTest, ScriptOpensCollectionAndRunsShortMirroredTest) {
    m_env.testSettings.databaseFolder = m_folder.File(kSolvedProblemsFolder);
    const TScriptResult result =
        RunScript("open small.cp\n\nsettempregsize 50%\nrunregtest short,withmirror\n");
    EXPECT_TRUE(m_printed.starts_with("Running .vrs script...\n"));
    EXPECT_TRUE(m_printed.ends_with("Script complete.\n"));
    ASSERT_EQ(result.logFiles.size(), 1u);
    const std::string log = testing::FileText(result.logFiles[0]);
    EXPECT_TRUE(log.starts_with("Short regression test (64 sec.) started of ")) << log;
    EXPECT_NE(log.find("Mirror: [SnglSolution, 1thrd(s)] Test #2 M1 ok ("), std::string::npos) << log;
    EXPECT_TRUE(result.bAnyFailed);
    EXPECT_EQ(m_env.solve.timeLimitSeconds, 0);
    EXPECT_FALSE(ReadSolvedProblems(m_folder.File(kSolvedProblemsFolder) / "small.cspdb").empty());
}

TEST_F(RegressionTestTest, ScriptRunRegTestOpensItsOptionalFile) {
    const TScriptResult result = RunScript("RUNREGTEST SHORT wrong_answer.cp\nFROBNICATE now\n");
    ASSERT_EQ(result.logFiles.size(), 1u);
    EXPECT_NE(
        testing::FileText(result.logFiles[0]).find("Failed: [SnglSolution, 1thrd(s)] Test #7 M1 failed:\n"),
        std::string::npos);
    EXPECT_NE(m_printed.find("Script line 2: unknown command FROBNICATE skipped\n"), std::string::npos);
    EXPECT_EQ(result.collection.size(), 1u);
}

TEST_F(RegressionTestTest, ScriptVerifyShortMateReportsAndRemoves) {
    // #3 problem 2 of small.cp read as a #4: mated one move sooner.
    testing::CTempFolder data;
    data.Write("long.cp",
               "8 #4\n{\n FEN: 8/8/8/8/P7/3PQ3/3K4/k7 w - - 0 1\n}\n"
               "9 #2\n{\n FEN: 8/8/Q7/8/2K5/5P2/8/2k5 w - - 0 1\n}\n");
    TScriptResult result = RunScript("verifyshortmate check long.cp\n", data.Path());
    EXPECT_TRUE(result.bAnyFailed);
    EXPECT_NE(m_printed.find("Problem 8 #4: short mate in 3: "), std::string::npos) << m_printed;
    EXPECT_NE(m_printed.find("Short mates verified in 2 problem(s): 1 found\n"), std::string::npos);
    EXPECT_EQ(result.collection.size(), 2u);
    result = RunScript("verifyshortmate remove long.cp\n", data.Path());
    ASSERT_EQ(result.collection.size(), 1u);
    EXPECT_EQ(result.collection[0].m_nNumber, 9u);
}

TEST_F(RegressionTestTest, ScriptFaultyLinesNameTheirNumber) {
    EXPECT_EQ(ScriptError("\nOPEN\n"), "Script line 2: OPEN needs a file name");
    EXPECT_EQ(ScriptError("open small.cp\nSETTEMPREGSIZE 50 pct\n"),
              "Script line 2: SETTEMPREGSIZE needs a size with %, GB or MB: 50");
    EXPECT_EQ(ScriptError("SETTEMPREGSIZE GB\n"),
              "Script line 1: SETTEMPREGSIZE needs a size with %, GB or MB: GB");
    EXPECT_EQ(ScriptError("SetTempRegSize 2gb\nsettempregsize 512MB\n"), test::kNoError);
    EXPECT_TRUE(ScriptError("open no_such_file.cp\n").starts_with("Script line 1: Error opening file: "));
    EXPECT_TRUE(ScriptError("open broken.cp\n").starts_with("Script line 1: "));
}

}  // namespace
}  // namespace moremate
