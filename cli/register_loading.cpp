#include "register_loading.h"

#include <fmt/core.h>

#include "core/chess_exception.h"
#include "problems/annotations/register_reference.h"
#include "registers/register_pair_commit.h"
#include "settings/program_folder.h"

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

void PrepareRegisterSavePath(const std::filesystem::path& file) {
    if (file.empty()) throw ChessException("The register file's name is empty");
    std::error_code error;
    if (file.has_parent_path()) std::filesystem::create_directories(file.parent_path(), error);
    if (error)
        throw ChessException("Cannot create the folder " + file.parent_path().string() + " (" +
                             error.message() + ")");
    if (std::filesystem::is_directory(file, error))
        throw ChessException("Cannot save the register to " + file.string() + ": it is a folder");
}

void SaveRunRegister(const std::filesystem::path& file, CRunRegister& runRegister) {
    PrepareRegisterSavePath(file);
    TRegisterSaveOptions options;
    options.form = FormOf(file.filename().string());
    SaveRegisterFile(file, runRegister.WhiteToMove(), &runRegister.BlackToMove(), options);
}

}  // namespace moremate::cli
