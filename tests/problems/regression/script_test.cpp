#include "problems/regression/script.h"

#include <gtest/gtest.h>

#include "problems/regression/solved_problems_db.h"
#include "tests/problems/problem_text.h"

namespace moremate {
namespace {

const std::filesystem::path kData = MOREMATE_TEST_DATA;

class ScriptTest : public ::testing::Test {
  protected:
    TScriptResult Run(const std::string& text) {
        m_env.testSettings.logFolder = m_folder.Path();
        m_env.baseFolder = kData;
        return RunScriptText(text, m_env);
    }
    // The message of the script's fault, or "" when it runs.
    std::string Error(const std::string& text) {
        try {
            Run(text);
        } catch (const CScriptError& e) {
            return e.what();
        }
        return "";
    }

    testing::CTempFolder m_folder;
    TOptions m_options;
    std::string m_printed;
    TScriptEnvironment m_env{m_options, {}, {}, {}, [this](const std::string& line) { m_printed += line; }};
};

TEST_F(ScriptTest, OpensCollectionAndRunsShortMirroredTest) {
    m_env.testSettings.databaseFolder = m_folder.File(kSolvedProblemsFolder);
    const TScriptResult result = Run("open small.cp\n\nsettempregsize 50%\nrunregtest short,withmirror\n");
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

TEST_F(ScriptTest, RunRegTestOpensItsOptionalFile) {
    const TScriptResult result = Run("RUNREGTEST SHORT wrong_answer.cp\nFROBNICATE now\n");
    ASSERT_EQ(result.logFiles.size(), 1u);
    EXPECT_NE(
        testing::FileText(result.logFiles[0]).find("Failed: [SnglSolution, 1thrd(s)] Test #7 M1 failed:\n"),
        std::string::npos);
    EXPECT_NE(m_printed.find("Script line 2: unknown command FROBNICATE skipped\n"), std::string::npos);
    EXPECT_EQ(result.collection.size(), 1u);
}

TEST_F(ScriptTest, VerifyShortMateReportsAndRemoves) {
    // #3 problem 2 of small.cp read as a #4: mated one move sooner.
    testing::CTempFolder data;
    data.Write("long.cp",
               "8 #4\n{\n FEN: 8/8/8/8/P7/3PQ3/3K4/k7 w - - 0 1\n}\n"
               "9 #2\n{\n FEN: 8/8/Q7/8/2K5/5P2/8/2k5 w - - 0 1\n}\n");
    m_env.testSettings.logFolder = m_folder.Path();
    m_env.baseFolder = data.Path();
    TScriptResult result = RunScriptText("verifyshortmate check long.cp\n", m_env);
    EXPECT_TRUE(result.bAnyFailed);
    EXPECT_NE(m_printed.find("Problem 8 #4: short mate in 3: "), std::string::npos) << m_printed;
    EXPECT_NE(m_printed.find("Short mates verified in 2 problem(s): 1 found\n"), std::string::npos);
    EXPECT_EQ(result.collection.size(), 2u);
    result = RunScriptText("verifyshortmate remove long.cp\n", m_env);
    ASSERT_EQ(result.collection.size(), 1u);
    EXPECT_EQ(result.collection[0].m_nNumber, 9u);
}

TEST_F(ScriptTest, FaultyLinesNameTheirNumber) {
    EXPECT_EQ(Error("\nOPEN\n"), "Script line 2: OPEN needs a file name");
    EXPECT_EQ(Error("open small.cp\nSETTEMPREGSIZE 50 pct\n"),
              "Script line 2: SETTEMPREGSIZE needs a size with %, GB or MB: 50");
    EXPECT_EQ(Error("SETTEMPREGSIZE GB\n"),
              "Script line 1: SETTEMPREGSIZE needs a size with %, GB or MB: GB");
    EXPECT_TRUE(Error("SetTempRegSize 2gb\nsettempregsize 512MB\n").empty());
    EXPECT_TRUE(Error("open no_such_file.cp\n").starts_with("Script line 1: Error opening file: "));
    EXPECT_TRUE(Error("open broken.cp\n").starts_with("Script line 1: "));
}

}  // namespace
}  // namespace moremate
