#include "text_file.h"

#include <fstream>

#include "core/chess_exception.h"
#include "settings/machine.h"

namespace moremate {
namespace {

[[noreturn]] void Refuse(const std::filesystem::path& file, const std::string& sReason) {
    throw ChessException("Error opening file: " + file.string() + " (" + sReason + ")");
}

uint64_t MemoryLimit() {
    const uint64_t nMemory = PhysicalMemoryBytes();
    return nMemory ? nMemory / 4 : UINT64_MAX;
}

std::string TooLarge(uint64_t nLimit) {
    return "larger than the " + std::to_string(nLimit >> 20) + " MB this program reads";
}

}  // namespace

std::string ReadTextFile(const std::filesystem::path& file, uint64_t nStreamLimit) {
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(file, error);
    if (error) Refuse(file, error.message());
    if (std::filesystem::is_directory(status)) Refuse(file, "a folder");
    const bool bRegular = std::filesystem::is_regular_file(status);
    const uint64_t nLimit = bRegular ? MemoryLimit() : nStreamLimit;
    if (bRegular) {
        const uint64_t nSize = std::filesystem::file_size(file, error);
        if (error) Refuse(file, error.message());
        if (nSize > nLimit) Refuse(file, TooLarge(nLimit));
    }
    std::ifstream in(file, std::ios::binary);
    if (!in) Refuse(file, "cannot be opened");
    std::string text;
    char buffer[1 << 16];
    while (in.read(buffer, sizeof buffer) || in.gcount() > 0) {
        text.append(buffer, static_cast<size_t>(in.gcount()));
        if (text.size() > nLimit) Refuse(file, TooLarge(nLimit));
    }
    if (in.bad()) Refuse(file, "cannot be read");
    return text;
}

}  // namespace moremate
