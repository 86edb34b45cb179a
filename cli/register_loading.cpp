#include "register_loading.h"

#include <fmt/core.h>

#include "core/chess_exception.h"
#include "registers/register_file.h"

namespace moremate::cli {

std::unique_ptr<CRunRegister> LoadRunRegister(const std::string& file, TProgramContext& context) {
    auto runRegister = std::make_unique<CRunRegister>(context.options);
    TRegisterLoadOptions options;
    options.bLogToFile = context.options.m_bLogToFileTmpRegLoad;
    const TRegisterLoadResult result =
        LoadRegisterFile(file, runRegister->WhiteToMove(), &runRegister->BlackToMove(),
                         runRegister->WhiteToMove().BucketCount(), options);
    if (!result.bRead) throw ChessException(file + ": " + result.sError);
    fmt::print(stderr, "{}\n",
               LoadReportText(result, file, context.options.m_nLanguageId,
                              context.options.m_bClearRegisterOnStartSolving));
    return runRegister;
}

}  // namespace moremate::cli
