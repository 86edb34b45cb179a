#include "tablebase_access.h"

#include "settings/program_folder.h"

namespace moremate {

std::unique_ptr<CTablebaseService> TablebaseForRuns(const TOptions& options, CReporter& reporter) {
    if (options.m_shLichessLevels < 0) return nullptr;
    return std::make_unique<CTablebaseService>(options, reporter, ProgramFolder());
}

}  // namespace moremate
