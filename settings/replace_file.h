// Writes a whole file so that readers never see it half written: the content goes to a temporary
// name beside it, which then replaces the file in one rename.
#pragma once

#include <filesystem>
#include <string>

namespace moremate {

// False when the file could not be written; the old file, if any, is then left as it was.
bool ReplaceFile(const std::filesystem::path& path, const std::string& content);

}  // namespace moremate
