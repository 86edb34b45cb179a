// Reading files of outside data with a bound: a file larger than its reader's limit, a folder or
// an endless device is refused with a message naming it before any of it is read.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace moremate {

// What a pipe or a device may deliver at most to a text reader.
inline constexpr uint64_t kStreamedFileLimit = uint64_t{64} << 20;

// A quarter of the memory: the most a whole-file reader takes of it.
uint64_t MemoryReadLimit();

struct TReadLimits {
    uint64_t nFileBytes = MemoryReadLimit();     // a regular file
    uint64_t nStreamBytes = kStreamedFileLimit;  // a pipe or device, read until it ends; 0: none
};

// The file's bytes. Throws ChessException "Error opening file: " with the name and the reason
// when it is missing, a folder, larger than its limit, or cannot be read.
std::string ReadTextFile(const std::filesystem::path& file, const TReadLimits& limits = {});

// The size of a regular file of at most `nLimit` bytes, for readers that seek in it; anything else
// (a folder, a pipe, a device, a larger file) is refused as ReadTextFile refuses it.
uint64_t BoundedFileSize(const std::filesystem::path& file, uint64_t nLimit);

}  // namespace moremate
