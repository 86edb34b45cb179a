#include "tablebase_access.h"

#include "settings/program_folder.h"

namespace moremate::cli {

std::unique_ptr<CTablebaseService> TablebaseForRuns(TProgramContext& context) {
    if (context.options.m_shLichessLevels < 0) return nullptr;
    return std::make_unique<CTablebaseService>(context.options, context.reporter, ProgramFolder());
}

}  // namespace moremate::cli
