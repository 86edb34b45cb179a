#include "regression_test.h"

#include <fmt/chrono.h>
#include <fmt/core.h>
#include <fmt/ranges.h>

#include <chrono>
#include <ctime>
#include <fstream>

#include "core/chess_exception.h"
#include "core/chessboard_id.h"
#include "engine/state/thread_counters.h"
#include "problems/annotations/mirrored_entry.h"
#include "solved_problems_db.h"

namespace moremate {
namespace {

using COutput = std::function<void(const std::string&)>;

// Every line goes to the caller and, flushed at once, to the log, so that a long test can be
// followed and an interrupted one keeps what was done.
class CTestLog {
  public:
    CTestLog(const std::filesystem::path& file, const COutput& output)
        : m_file(file, std::ios::app | std::ios::binary), m_output(output) {
        if (!m_file) throw ChessException("Error opening file: " + file.string());
    }
    void Write(const std::string& text) {
        m_file << text << std::flush;
        if (m_output) m_output(text);
    }

  private:
    std::ofstream m_file;
    const COutput& m_output;
};

// A short test's limit stands in for the caller's own until the test ends, however it ends.
class CTimeLimitOverride {
  public:
    CTimeLimitOverride(TSolveSettings& solve, std::optional<int> seconds)
        : m_solve(solve), m_nSaved(solve.timeLimitSeconds) {
        if (seconds) solve.timeLimitSeconds = *seconds;
    }
    ~CTimeLimitOverride() { m_solve.timeLimitSeconds = m_nSaved; }
    CTimeLimitOverride(const CTimeLimitOverride&) = delete;
    CTimeLimitOverride& operator=(const CTimeLimitOverride&) = delete;

  private:
    TSolveSettings& m_solve;
    int m_nSaved;
};

std::tm LocalTime(std::chrono::system_clock::time_point when) {
    const std::time_t t = std::chrono::system_clock::to_time_t(when);
    std::tm local{};
    localtime_r(&t, &local);
    return local;
}

std::string Heading(const TRegressionTestSettings& settings, const TSolveSettings& solve,
                    const std::tm& start, const std::filesystem::path& collection) {
    const std::string kind =
        settings.bShort ? fmt::format("Short regression test ({} sec.) started of ", solve.timeLimitSeconds)
                        : std::string("Regression test started of ");
    return fmt::format("{}{:%Y-%m-%d %H:%M:%S}, file {}\n", kind, start, collection.string());
}

int Threads(const ProblemEntry& entry, const TSolveSettings& solve) {
    return entry.m_nThreads != kThreadsNotGiven ? entry.m_nThreads : solve.threads;
}

bool AllSolutions(const ProblemEntry& entry, const TSolveSettings& solve) {
    return solve.allSolutions || entry.Has(kOptAllSolutions);
}

bool SingleSolution(const ProblemEntry& entry, const TSolveSettings& solve) {
    return !AllSolutions(entry, solve) && solve.stopOn == 0 &&
           !entry.Has(kOptStopOnDual | kOptStopOn3Sol | kOptStopOn4Sol);
}

std::string KeyLines(const std::vector<std::string>& keys) {
    return keys.empty() ? "No solution\n" : fmt::format("{}\n", fmt::join(keys, ", "));
}

// What the run found to compare with the record's answer: the keys, or the first moves of the
// solver's order as many as the expected order names.
std::vector<std::string> Found(const ProblemEntry& entry, const TProblemReport& report) {
    if (entry.m_answerKind == AnswerKind::Full) return report.keys;
    const size_t count = std::min(report.firstMoveOrder.size(), entry.m_vAnswer.size());
    return {report.firstMoveOrder.begin(), report.firstMoveOrder.begin() + static_cast<long>(count)};
}

// The lines of one solved problem: its result, then one per failed check; failures begin with
// "Failed: ".
std::string ProblemLines(const ProblemEntry& entry, const TSolveSettings& solve, const TProblemReport& report,
                         bool mirrored) {
    const std::string head =
        fmt::format("{}[{}]", mirrored ? kMirrorPrefix : "", TestModeLabel(entry, solve));
    const std::string suffix = fmt::format(" M{}", Threads(entry, solve));
    if (report.error)
        return fmt::format("Failed: {} Test #{}{} failed: {}\n", head, report.problem, suffix, *report.error);
    std::string lines;
    if (!report.match)
        lines =
            fmt::format("{} Prob.#{}{} {} ({} msec).\n", head, report.problem, suffix,
                        report.keys.empty() ? "No solution" : fmt::format("{}", fmt::join(report.keys, ", ")),
                        report.msec);
    else if (!*report.match)
        lines =
            fmt::format("Failed: {} Test #{}{} failed:\n\tfound:\n{}\tshould be:\n{}", head, report.problem,
                        suffix, KeyLines(Found(entry, report)), KeyLines(*report.expected));
    for (const std::string& failure : report.failedChecks)
        lines += fmt::format("Failed: {} Test #{}{} failed: {}\n", head, report.problem, suffix, failure);
    if (!lines.empty()) return lines;
    return fmt::format(
        "{} Test #{}{} ok ({} msec){}.\n", head, report.problem, suffix, report.msec,
        entry.m_answerKind == AnswerKind::ExpectedSortOnly ? " - ExpectedSortWhiteMovesOnly" : "");
}

TSolvedProblemRow Row(const ProblemEntry& entry, const TSolveSettings& solve, const TProblemReport& report,
                      bool mirrored) {
    return {report.problem,
            mirrored,
            ToAlphanum6(EncodeId(entry.m_position.board.squares)),
            report.stipulation,
            fmt::format("{}", fmt::join(report.keys, ", ")),
            report.result,
            report.msec,
            fmt::format("[{}] time limit {} sec.", TestModeLabel(entry, solve), solve.timeLimitSeconds)};
}

// One position of the test: the record's own or its mirror image.
class CTestRun {
  public:
    CTestRun(const TSolveSettings& solve, const TOptions& options, CTestLog& log)
        : m_solve(solve), m_options(options), m_log(log) {}

    void Test(const ProblemEntry& entry, bool mirrored) {
        const TProblemReport report = SolveProblem(entry, m_solve, m_options, m_runRegister, nullptr);
        if (report.registerLoad) m_log.Write(*report.registerLoad + '\n');
        m_log.Write(ProblemLines(entry, m_solve, report, mirrored));
        if (report.error || report.match == false || !report.failedChecks.empty()) m_bAnyFailed = true;
        m_rows.push_back(Row(entry, m_solve, report, mirrored));
    }
    bool AnyFailed() const { return m_bAnyFailed; }
    const std::vector<TSolvedProblemRow>& Rows() const { return m_rows; }

  private:
    const TSolveSettings& m_solve;
    const TOptions& m_options;
    CTestLog& m_log;
    std::unique_ptr<CRunRegister> m_runRegister;
    std::vector<TSolvedProblemRow> m_rows;
    bool m_bAnyFailed = false;
};

bool RunOnce(const std::vector<ProblemEntry>& entries, const std::filesystem::path& collection,
             const TRegressionTestSettings& settings, const TSolveSettings& solve, const TOptions& options,
             CTestLog& log) {
    log.Write(Heading(settings, solve, LocalTime(std::chrono::system_clock::now()), collection));
    CTestRun run(solve, options, log);
    for (const ProblemEntry& entry : entries) {
        if (settings.StopAsked()) break;
        if (!entry.Has(kOptMirrorOnly)) run.Test(entry, false);
        if (entry.Has(kOptMirrorOnly) || (settings.bWithMirror && !entry.Has(kOptNoMirror)))
            run.Test(MirroredEntry(entry), true);
    }
    if (settings.databaseFolder)
        StoreSolvedProblems(SolvedProblemsFile(*settings.databaseFolder, collection, settings.bShort),
                            run.Rows());
    return run.AnyFailed();
}

}  // namespace

bool RunInLoop(const TOptions& options, const TUserQuestions& questions) {
    return options.m_bRunRegressionTestInLoop && AskYesNo(questions, kRunInLoopQuestion);
}

std::string TestModeLabel(const ProblemEntry& entry, const TSolveSettings& solve) {
    const char* mode = AllSolutions(entry, solve)     ? "AllSolutions,"
                       : SingleSolution(entry, solve) ? "SnglSolution,"
                                                      : "";
    return ThreadsText(mode, static_cast<size_t>(Threads(entry, solve)), static_cast<size_t>(solve.levels));
}

TRegressionTestResult RunRegressionTest(const std::vector<ProblemEntry>& entries,
                                        const std::filesystem::path& collection,
                                        const TRegressionTestSettings& settings, TSolveSettings& solve,
                                        const TOptions& options, const COutput& output) {
    const CTimeLimitOverride limit(
        solve, settings.bShort ? std::optional(options.m_nShortRegTestSeconds) : std::nullopt);
    TRegressionTestResult result;
    result.logFile = settings.logFolder / fmt::format("RegressionTest_{:%Y_%m_%d__%H_%M_%S}.log",
                                                      LocalTime(std::chrono::system_clock::now()));
    CTestLog log(result.logFile, output);
    for (int loop = 0; (settings.nLoops == kUntilStopped || loop < settings.nLoops) && !settings.StopAsked();
         ++loop)
        result.bAnyFailed = RunOnce(entries, collection, settings, solve, options, log) || result.bAnyFailed;
    return result;
}

}  // namespace moremate
