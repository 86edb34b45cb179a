#include "bounded_file.h"

#include <fstream>

#include "core/chess_exception.h"
#include "machine.h"

namespace moremate {
namespace {

[[noreturn]] void Refuse(const std::filesystem::path& file, const std::string& sReason) {
    throw ChessException("Error opening file: " + file.string() + " (" + sReason + ")");
}

[[noreturn]] void RefuseTooLarge(const std::filesystem::path& file, uint64_t nLimit) {
    Refuse(file, "larger than the " + std::to_string(nLimit >> 20) + " MB this program reads");
}

// A pipe or a device, where the reader takes only regular files: refused before it is opened,
// which could wait for a writer for ever.
[[noreturn]] void RefuseIrregular(const std::filesystem::path& file) {
    Refuse(file, "not a regular file");
}

// The file's status; a missing file and a folder are refused.
std::filesystem::file_status StatusOfFile(const std::filesystem::path& file) {
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(file, error);
    if (error) Refuse(file, error.message());
    if (std::filesystem::is_directory(status)) Refuse(file, "a folder");
    return status;
}

uint64_t CheckedSize(const std::filesystem::path& file, uint64_t nLimit) {
    std::error_code error;
    const uint64_t nSize = std::filesystem::file_size(file, error);
    if (error) Refuse(file, error.message());
    if (nSize > nLimit) RefuseTooLarge(file, nLimit);
    return nSize;
}

}  // namespace

uint64_t MemoryReadLimit() {
    const uint64_t nMemory = PhysicalMemoryBytes();
    return nMemory ? nMemory / 4 : UINT64_MAX;
}

std::string ReadTextFile(const std::filesystem::path& file, const TReadLimits& limits) {
    const bool bRegular = std::filesystem::is_regular_file(StatusOfFile(file));
    if (!bRegular && limits.nStreamBytes == 0) RefuseIrregular(file);
    const uint64_t nLimit = bRegular ? limits.nFileBytes : limits.nStreamBytes;
    if (bRegular) CheckedSize(file, nLimit);
    std::ifstream in(file, std::ios::binary);
    if (!in) Refuse(file, "cannot be opened");
    std::string text;
    char buffer[1 << 16];
    while (in.read(buffer, sizeof buffer) || in.gcount() > 0) {
        text.append(buffer, static_cast<size_t>(in.gcount()));
        if (text.size() > nLimit) RefuseTooLarge(file, nLimit);
    }
    if (in.bad()) Refuse(file, "cannot be read");
    return text;
}

uint64_t BoundedFileSize(const std::filesystem::path& file, uint64_t nLimit) {
    if (!std::filesystem::is_regular_file(StatusOfFile(file))) RefuseIrregular(file);
    return CheckedSize(file, nLimit);
}

}  // namespace moremate
