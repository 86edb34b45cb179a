#include "processor_affinity.h"

#include <sched.h>

#include "process_threads.h"

namespace moremate {

static_assert(kMaxProcessors == CPU_SETSIZE);

std::optional<TProcessorMask> ReadProcessAffinity() {
    cpu_set_t set;
    CPU_ZERO(&set);
    if (sched_getaffinity(0, sizeof(set), &set) != 0) return std::nullopt;
    TProcessorMask mask;
    for (std::size_t i = 0; i < kMaxProcessors; ++i) mask[i] = CPU_ISSET(i, &set);
    return mask;
}

bool WriteProcessAffinity(const TProcessorMask& mask) {
    cpu_set_t set;
    CPU_ZERO(&set);
    for (std::size_t i = 0; i < kMaxProcessors; ++i) {
        if (mask[i]) CPU_SET(i, &set);
    }
    return ForEachProcessThread(
        [&set](pid_t thread) { return sched_setaffinity(thread, sizeof(set), &set) == 0; });
}

std::string ProcessorMenuText(std::size_t processor, int languageId) {
    const char* word = languageId == kPolish      ? "Procesor "
                       : languageId == kUkrainian ? "Процесор "
                                                  : "Processor ";
    return word + std::to_string(processor);
}

std::optional<TProcessorMask> ToggledAffinity(const std::vector<bool>& menuChecks, std::size_t processor,
                                              const TProcessorMask& current) {
    TProcessorMask shown;
    for (std::size_t i = 0; i < menuChecks.size() && i < kMaxProcessors; ++i) shown[i] = menuChecks[i];
    if (shown != current) return std::nullopt;
    return shown.flip(processor);
}

bool ToggleProcessor(const std::vector<bool>& menuChecks, std::size_t processor, CReporter& reporter,
                     int languageId) {
    std::optional<TProcessorMask> current = ReadProcessAffinity();
    if (!current) return false;
    std::optional<TProcessorMask> toggled = ToggledAffinity(menuChecks, processor, *current);
    if (!toggled) {
        reporter.Report(ReportTitle(ReportKind::Warning, languageId), kAffinityChangedOutside);
        return false;
    }
    return WriteProcessAffinity(*toggled);
}

}  // namespace moremate
