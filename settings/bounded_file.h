// Reading a whole text file (a collection, a script) with a bound: a file that cannot fit in
// memory is refused before it is read, and a pipe or device is read only up to a limit.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace moremate {

// What a pipe or a device may deliver at most.
inline constexpr uint64_t kStreamedFileLimit = uint64_t{64} << 20;

// The file's bytes. Throws ChessException "Error opening file: " with the name and the reason
// when it is missing, a folder, larger than a quarter of the memory (or than `nStreamLimit` for a
// pipe or device), or cannot be read.
std::string ReadTextFile(const std::filesystem::path& file, uint64_t nStreamLimit = kStreamedFileLimit);

}  // namespace moremate
