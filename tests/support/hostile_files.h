// Files where a reader of outside data expects a file of its own: a folder, a pipe without a
// writer, an endless device and a file just past the reader's limit, each with the message the
// bounded reader refuses it with.
#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace moremate::testing {

enum class THostileKind { Folder, Pipe, Device, OneBytePastTheLimit };

inline constexpr THostileKind kHostileKinds[] = {THostileKind::Folder, THostileKind::Pipe,
                                                 THostileKind::Device, THostileKind::OneBytePastTheLimit};

// Makes `file` of the kind and returns the reader's message about it; `nLimit` in whole MB.
inline std::string MakeHostileFile(THostileKind kind, const std::filesystem::path& file, uint64_t nLimit) {
    std::string reason;
    switch (kind) {
        case THostileKind::Folder:
            std::filesystem::create_directory(file);
            reason = "a folder";
            break;
        case THostileKind::Pipe:
            mkfifo(file.c_str(), 0600);
            reason = "not a regular file";
            break;
        case THostileKind::Device:
            std::filesystem::create_symlink("/dev/zero", file);
            reason = "not a regular file";
            break;
        case THostileKind::OneBytePastTheLimit:
            std::ofstream(file, std::ios::binary).put('x');
            std::filesystem::resize_file(file, nLimit + 1);  // sparse: nothing is written
            reason = "larger than the " + std::to_string(nLimit >> 20) + " MB this program reads";
            break;
    }
    return "Error opening file: " + file.string() + " (" + reason + ")";
}

}  // namespace moremate::testing
