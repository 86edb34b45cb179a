// The texts with which the interface speaks about a solving run: the result of the analysis, the
// progress box, stopping, skipping and reordering, quitting, the automatic save, and the requests refused
// while a run is active.
#pragma once

#include <cstddef>
#include <string>

namespace moremate {

inline constexpr const char* kResultOfAnalysisTitle = "Result of analysis";
inline constexpr const char* kFromRegisterSuffix =
    " (from register)";  // the result was known before the search
inline constexpr const char* kAnalysisStoppedText = "Analysis stopped by user";
inline constexpr const char* kStoppedByUserSuffix = " (stopped by user)";
inline constexpr const char* kStopAllThreadsText = "All pending threads of mate search will be stopped.";
inline constexpr const char* kStopPendingText = "Stop pending...";
inline constexpr const char* kGlobalRegisterLoadPendingText =
    "Global register load pending. Stopping may take a few seconds...";
inline constexpr const char* kSkipFailedText = "Skip to next move has failed (engine busy?)";
inline constexpr const char* kReorderFailedText =
    "Change of the order of analysis has failed (no move being analysed, or no move waiting)";
inline constexpr const char* kSaveRefusedText =
    "Analysis pending. Stop it or pause it before trying to save temporary data";
inline constexpr const char* kToolUnavailableText =
    "The tool is unavailable when engine is analysing a position";
inline constexpr const char* kAutoSaveFailedTitle = "Automatic save of temporary data failed";
inline constexpr const char* kPositionRepetitionTitle = "Position repetition";
inline constexpr const char* kPositionRepetitionText =
    "Program detected position repetition\nFor optimization reasons every postion repetition is treated as "
    "preventing mate and, thus, program terminates analysis in such case.";

// "No solution found", with " (N sec.)" when the time is given (`seconds` >= 0), and the note
// about pass 2 when it is switched off.
std::string NoSolutionText(int seconds, bool passTwoOff);
// "Solutions found so far: N" and "Refutations found so far: N".
std::string SolutionsSoFarText(size_t count);
std::string RefutationsSoFarText(size_t count);
// "Search for solution is pending for N problem(s)." and "Are you sure you want to quit?".
std::string QuitQuestionText(size_t pendingProblems);

}  // namespace moremate
