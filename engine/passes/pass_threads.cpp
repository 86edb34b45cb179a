#include "pass_threads.h"

#include <algorithm>

#include "engine/heuristics/heuristic_names.h"
#include "engine/state/thread_counters.h"
#include "settings/machine.h"

namespace moremate {

void ConfigurePassThreads(TSolveRequest& pass, const TRunThreads& run, const TPassState& state, uint8_t phase,
                          bool onlyPass) {
    const bool secondPhase = phase != kNotHybrid && phase != kHybridFirstPhase;
    const int processors = static_cast<int>(LogicalProcessorCount());
    pass.processors = processors;  // more threads than processors only share them
    pass.threads = std::max(run.threads, 1);
    pass.levels = std::max(run.levels, 0);
    if (secondPhase || (onlyPass && state.set.mask != 0)) {
        const int additional = processors - pass.threads;
        if (additional > 0) {
            g_nAdditionalThreadsSpawned += additional;
            pass.threads = processors;
        }
        pass.levels = std::max(pass.levels, 1);
    }
    TLevelContext& context = pass.levelContext;
    context.m_shLookForQuickerMateDepth =
        secondPhase ? kDefaultQuickMateDepthPlies : QuickMateDepthPlies(state.set.params.quickMateDepth);
    context.VerifyHeuristics = pass.environment.heuristics != nullptr;
    const TJuggledMoves juggled =
        JuggledMoves(run.scheduler, static_cast<size_t>(pass.levels), state.set.mask, secondPhase);
    pass.scheduler = run.scheduler;
    pass.juggled = juggled;
    context.m_byVariant = static_cast<uint8_t>(juggled.Empty() ? 0 : juggled.last);
    context.m_byPhase = phase;
    context.m_bForcedMatePass = (state.set.mask & SH_FINDFORCEDMATE) != 0;
}

int ProofNumberPassThreads(const TRunThreads& run) {
    const int processors = static_cast<int>(LogicalProcessorCount());
    int threads = 1;
    for (int level = 0; level < std::max(run.levels, 1) && threads < processors; ++level)
        threads *= std::max(run.threads, 1);
    return std::clamp(threads, 1, std::max(processors, 1));
}

}  // namespace moremate
