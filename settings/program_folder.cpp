#include "program_folder.h"

#include <cstdlib>

namespace moremate {

std::filesystem::path ProgramFolder() {
    const char* home = std::getenv("MOREMATE_HOME");
    if (home != nullptr && *home != '\0') return home;
    std::error_code error;
    std::filesystem::path executable = std::filesystem::read_symlink("/proc/self/exe", error);
    // Without /proc (a chroot, say) the working folder is the best remaining guess.
    return error ? std::filesystem::current_path(error) : executable.parent_path();
}

std::filesystem::path OptionsFilePath() {
    return ProgramFolder() / "options.ini";
}

}  // namespace moremate
