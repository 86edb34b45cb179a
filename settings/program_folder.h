// Where the program keeps its settings: the folder named by $MOREMATE_HOME, else the folder of
// the executable itself, so that an installation can be moved or run from a build folder.
#pragma once

#include <filesystem>

namespace moremate {

std::filesystem::path ProgramFolder();
std::filesystem::path OptionsFilePath();

}  // namespace moremate
