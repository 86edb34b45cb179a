#include "run_texts.h"

#include <fmt/core.h>

namespace moremate {

std::string NoSolutionText(int seconds, bool passTwoOff) {
    std::string text =
        seconds >= 0 ? fmt::format("No solution found ({} sec.)", seconds) : "No solution found";
    if (passTwoOff)
        text +=
            " NOTE: Pass without heuristics is currently switched off (see heuristics selection dialog box)";
    return text;
}

std::string SolutionsSoFarText(size_t count) {
    return fmt::format("Solutions found so far: {}", count);
}

std::string RefutationsSoFarText(size_t count) {
    return fmt::format("Refutations found so far: {}", count);
}

std::string QuitQuestionText(size_t pendingProblems) {
    return fmt::format("Search for solution is pending for {} problem(s).\nAre you sure you want to quit?",
                       pendingProblems);
}

}  // namespace moremate
