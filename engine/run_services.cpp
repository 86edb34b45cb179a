#include "run_services.h"

#include <fmt/core.h>

#include <optional>

#include "run_control.h"
#include "thread_counters.h"

namespace moremate {
namespace {

bool KnownNoMate(const TPassRunRequest& request) {
    const TChessboard& root = request.position;
    return request.runRegister && SquaresTellAll(root) &&
           request.runRegister->Lookup(root.squares, root.movesLeft) == kNoMate;
}

// The configured threads and the main search threads running now: " 2^2thrd(s), 4 running".
std::string ThreadFigures(const TRunThreads& threads) {
    return fmt::format(
        "{}, {} running",
        ThreadsText("", static_cast<size_t>(threads.threads), static_cast<size_t>(threads.levels)),
        g_nMainThreadsRunning.load());
}

}  // namespace

TPassRunResult RunPassesWithServices(TPassRunRequest request, const TRunServices& services) {
    if (KnownNoMate(request)) {
        TPassRunResult known;
        known.fromRegister = true;
        return known;
    }
    std::atomic<uint64_t> nodes{0};
    if (!request.environment.progressNodes) request.environment.progressNodes = &nodes;
    request.environment.control = services.control;
    std::optional<CProgressTick> tick;
    if (services.onProgress) {
        const TRunThreads threads = request.threads;
        tick.emplace(TProgressSources{services.control, request.environment.progressNodes,
                                      request.runRegister, [threads] { return ThreadFigures(threads); }},
                     services.onProgress);
    }
    std::atomic<bool>* stop = services.control ? services.control->StopFlag() : nullptr;
    TPassRunResult result = RunPasses(std::move(request), stop);
    if (tick) tick->Stop();
    return result;
}

}  // namespace moremate
