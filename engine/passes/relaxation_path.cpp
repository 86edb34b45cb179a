// The "Show" button beside "Let relax heuristics": the sets of all passes a set leads to.
#include <limits>

#include "relaxation.h"

namespace moremate {
namespace {

std::string PassLabel(const TPassState& state) {
    std::string label = "Pass 1" + PassLetter(state.step);
    const TSeaSnake& snake = state.set.params.seaSnake;
    if (state.set.Has(SH_SEASNAKE) && snake.onlyAfterMove > 0)
        label += ", SH_SEASNAKE(after " + std::to_string(snake.onlyAfterMove) + " only)";
    return label + ": ";
}

}  // namespace

std::string RelaxationPathText(const TPassState& state, const TRelaxationEnvironment& env) {
    if (state.set.mask == 0) return "No heuristics selected.";
    TPassState copy = state;
    copy.subProblem = false;
    copy.parent = nullptr;
    copy.step = 0;
    copy.passEndTimes.fill(0);
    PreparePassOne(copy);
    // The path never takes the time-dependent step: every pass counts as slow. It notes it instead.
    TRelaxationEnvironment quiet = env;
    quiet.log = false;
    quiet.engineLogPath.clear();
    quiet.clock = [] { return std::numeric_limits<int64_t>::max() / 2; };
    std::string text = PassLabel(copy) + PassSetText(copy, env.root);
    bool timeDependent = false;
    while (TryRelaxSpecialHeuristics(copy, quiet)) {
        timeDependent = timeDependent || copy.timeDependentReached;
        text += "\n\n" + PassLabel(copy) + PassSetText(copy, env.root);
    }
    timeDependent = timeDependent || copy.timeDependentReached;
    if (timeDependent)
        text +=
            "\n\n* time-dependent relaxation (non-deterministic) - possible, but actually occurs only if all "
            "previous passes are completed in a short time";
    return text;
}

}  // namespace moremate
