#include "register_loading.h"

#include <fmt/core.h>

#include "core/chess_exception.h"
#include "problems/register_reference.h"

namespace moremate::cli {

std::unique_ptr<CRunRegister> LoadRunRegister(const std::string& file, TProgramContext& context) {
    TRunRegisterLoad load = LoadRunRegisterFile(file, context.options);
    if (!load.result.bRead) throw ChessException(file + ": " + load.result.sError);
    fmt::print(stderr, "{}\n",
               LoadReportText(load.result, file, context.options.m_nLanguageId,
                              context.options.m_bClearRegisterOnStartSolving));
    return std::move(load.runRegister);
}

}  // namespace moremate::cli
