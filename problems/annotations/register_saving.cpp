#include "register_saving.h"

#include <string>

#include "core/chess_exception.h"
#include "registers/register_file.h"

namespace moremate {
namespace {

TRegisterFileForm FormOf(const std::string& name) {
    if (name.ends_with(".lz4e.tmpReg")) return TRegisterFileForm::Lz4eContainer;
    if (name.ends_with(".lz4.tmpReg")) return TRegisterFileForm::Lz4Container;
    return TRegisterFileForm::Plain;
}

}  // namespace

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

}  // namespace moremate
