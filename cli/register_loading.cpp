#include "register_loading.h"

#include <fmt/core.h>

#include "core/chess_exception.h"
#include "problems/annotations/register_reference.h"
#include "registers/register_pair_commit.h"
#include "settings/program_folder.h"

namespace moremate::cli {
std::unique_ptr<CRunRegister> LoadRunRegister(const std::string& file, TProgramContext& context) {
    TRunRegisterLoad load = LoadRunRegisterFile(file, context.options);
    if (!load.result.bRead) {
        const std::string named = load.result.file.empty() ? file : load.result.file.string();
        throw ChessException(named + ": " + load.result.sError);
    }
    fmt::print(stderr, "{}\n",
               LoadReportText(load.result, file, context.options.m_nLanguageId,
                              context.options.m_bClearRegisterOnStartSolving));
    return std::move(load.runRegister);
}

void ReportInterruptedSaves() {
    try {
        for (const std::string& line : RecoverInterruptedSaves(ProgramFolder() / kSavedRegisterFolder))
            fmt::print(stderr, "{}\n", line);
    } catch (const ChessException& e) {
        fmt::print(stderr, "{}\n", e.what());
    }
}

}  // namespace moremate::cli
