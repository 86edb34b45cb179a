#include "run_services.h"

#include <fmt/core.h>

#include <algorithm>
#include <optional>

#include "engine/search/observed_lines.h"
#include "engine/state/run_control.h"
#include "engine/state/thread_counters.h"
#include "registers/register_autosave.h"
#include "run_texts.h"
#include "settings/machine.h"

namespace moremate {
namespace {

bool KnownNoMate(const TPassRunRequest& request) {
    const TChessboard& root = request.position;
    return request.runRegister && SquaresTellAll(root) &&
           request.runRegister->Lookup(root, root.movesLeft) == kNoMate;
}

// The configured threads and the main search threads running now: " 2^2thrd(s), 4 running".
std::string ThreadFigures(const TRunThreads& threads) {
    return fmt::format(
        "{}, {} running",
        ThreadsText("", static_cast<size_t>(threads.threads), static_cast<size_t>(threads.levels)),
        g_nMainThreadsRunning.load());
}

// The moves of the levels (a pass runs on one level at least), then those of the observer levels.
size_t ObservedMoves(const TRunThreads& threads) {
    return static_cast<size_t>(std::max(threads.levels, 1) + threads.observerLevels);
}

// The tick's work: the automatic save when it is due, then the interface's progress.
CProgressTick::FOnTick TickWork(const TRunServices& services) {
    return [autoSave = services.autoSave, onProgress = services.onProgress](const TRunProgress& progress) {
        if (autoSave) autoSave->SaveIfDueKeepingFailure();
        if (onProgress) onProgress(progress);
    };
}

void ReportAutoSaveFailure(const TRunServices& services) {
    if (!services.autoSave || !services.reporter) return;
    const std::string error = services.autoSave->LastError();
    if (!error.empty()) services.reporter->Report(kAutoSaveFailedTitle, error);
}

}  // namespace

TPassRunResult RunPassesWithServices(TPassRunRequest request, const TRunServices& services) {
    if (services.control) services.control->RunStarting();
    if (KnownNoMate(request)) {
        TPassRunResult known;
        known.fromRegister = true;
        return known;
    }
    std::atomic<uint64_t> nodes{0};
    if (!request.environment.progressNodes) request.environment.progressNodes = &nodes;
    request.environment.control = services.control;
    std::optional<CObservedLines> observed;
    std::optional<CProgressTick> tick;
    if (services.onProgress || services.autoSave) {
        const TRunThreads threads = request.threads;
        if (services.onProgress && threads.observerLevels > 0) {
            // A slot for each main thread: they never outnumber the processors.
            observed.emplace(LogicalProcessorCount(), ObservedMoves(threads));
            request.environment.observed = &*observed;
        }
        tick.emplace(
            TProgressSources{services.control, request.environment.progressNodes, request.runRegister,
                             [threads] { return ThreadFigures(threads); }, observed ? &*observed : nullptr},
            TickWork(services));
    }
    std::atomic<bool>* stop = services.control ? services.control->StopFlag() : nullptr;
    TPassRunResult result = RunPasses(std::move(request), stop);
    if (tick) tick->Stop();
    ReportAutoSaveFailure(services);
    return result;
}

}  // namespace moremate
