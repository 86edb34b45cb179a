#include "register_loading.h"

#include <fmt/core.h>

#include "core/chess_exception.h"
#include "problems/annotations/register_reference.h"

namespace moremate::cli {
namespace {

TRegisterFileForm FormOf(const std::string& name) {
    if (name.ends_with(".lz4e.tmpReg")) return TRegisterFileForm::Lz4eContainer;
    if (name.ends_with(".lz4.tmpReg")) return TRegisterFileForm::Lz4Container;
    return TRegisterFileForm::Plain;
}

}  // namespace

std::unique_ptr<CRunRegister> LoadRunRegister(const std::string& file, TProgramContext& context) {
    TRunRegisterLoad load = LoadRunRegisterFile(file, context.options);
    if (!load.result.bRead) throw ChessException(file + ": " + load.result.sError);
    fmt::print(stderr, "{}\n",
               LoadReportText(load.result, file, context.options.m_nLanguageId,
                              context.options.m_bClearRegisterOnStartSolving));
    return std::move(load.runRegister);
}

void SaveRunRegister(const std::filesystem::path& file, CRunRegister& runRegister) {
    if (file.has_parent_path()) std::filesystem::create_directories(file.parent_path());
    TRegisterSaveOptions options;
    options.form = FormOf(file.filename().string());
    SaveRegisterFile(file, runRegister.WhiteToMove(), &runRegister.BlackToMove(), options);
}

}  // namespace moremate::cli
