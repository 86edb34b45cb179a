#include "thread_options.h"

#include "engine/threads/multithreading_levels.h"
#include "settings/machine.h"

namespace moremate::cli {

void AddThreadOptions(CLI::App* cmd, TSolveSettings& settings) {
    settings.threads = static_cast<int>(LogicalProcessorCount());
    cmd->add_option("--threads", settings.threads,
                    "Threads per multithreading level (default: the processors)")
        ->check(CLI::Range(1, 64));
    settings.levels = -1;
    cmd->add_option("--levels", settings.levels,
                    "Multithreading levels: up to T^L main threads (default: options.ini)")
        ->check(CLI::Range(0, 64));
}

void ApplyThreadDefaults(TSolveSettings& settings, const TOptions& options) {
    if (settings.levels < 0)
        settings.levels = static_cast<int>(DefaultThreadSettings(options.m_nMultithreadingLevels).levels);
}

}  // namespace moremate::cli
