// What the fuzz targets share: the input as text, a folder of their own for the files a reader
// needs on disk, and the rule that a reader may refuse its input only with ChessException.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include "tests/support/temp_folder.h"

namespace moremate::fuzz {

inline std::string Text(const uint8_t* data, size_t size) {
    return std::string(reinterpret_cast<const char*>(data), size);
}

// A folder of this process under the temporary folder, removed with everything in it when the
// process ends normally.
inline const std::filesystem::path& Folder() {
    static const testing::CTempFolder folder;
    return folder.Path();
}

inline std::filesystem::path WriteFile(const std::string& name, const uint8_t* data, size_t size) {
    const std::filesystem::path file = Folder() / name;
    std::ofstream(file, std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    return file;
}

}  // namespace moremate::fuzz
