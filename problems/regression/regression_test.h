// Regression tests: every problem of a collection solved in turn and its keys compared with the
// record's answer, one line per problem printed and written to "RegressionTest_<time>.log" in
// the log folder; a short test solves each problem with the time limit `ShortRegTestSeconds`.
// Lines of mismatches and errors begin with "Failed: ", those of mirrored positions with
// "Mirror: "; " M<n>" after the problem number gives the main threads of its run.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "problems/format/problem_entry.h"
#include "problems/format/user_questions.h"
#include "problems/solving/problem_solving.h"
#include "settings/options.h"

namespace moremate {

inline constexpr int kUntilStopped = 0;
inline constexpr const char* kRunInLoopQuestion =
    "Ini setting RunRegressionTestInLoop is ON.\n\nDo you want to use it?";

struct TRegressionTestSettings {
    bool bShort = false;
    bool bWithMirror = false;  // also the mirrored positions, except records marked NoMirror
    int nLoops = 1;            // runs of the whole test, one after another; kUntilStopped: no end
    std::filesystem::path logFolder = ".";
    std::optional<std::filesystem::path> databaseFolder;  // where the results are stored, if anywhere
    std::function<bool()> stopped;                        // asked before each problem: true ends the test

    bool StopAsked() const { return stopped && stopped(); }
};

struct TRegressionTestResult {
    bool bAnyFailed = false;
    std::filesystem::path logFile;
};

// Solves `entries` (read from `collection`) with `solve`, whose time limit a short test replaces
// for its duration. Each line of the log also goes to `output`.
TRegressionTestResult RunRegressionTest(const std::vector<ProblemEntry>& entries,
                                        const std::filesystem::path& collection,
                                        const TRegressionTestSettings& settings, TSolveSettings& solve,
                                        const TOptions& options,
                                        const std::function<void(const std::string&)>& output);

// With the option RunRegressionTestInLoop on, asks kRunInLoopQuestion: true when the test is to be
// repeated until stopped.
bool RunInLoop(const TOptions& options, const TUserQuestions& questions);

// "SnglSolution, 1thrd(s)", "AllSolutions, 2thrd(s)", " 4^2thrd(s)".
std::string TestModeLabel(const ProblemEntry& entry, const TSolveSettings& solve);

}  // namespace moremate
