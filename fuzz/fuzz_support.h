// What the fuzz targets share: the input as text, a folder of their own for the files a reader
// needs on disk, and the rule that a reader may refuse its input only with ChessException.
#pragma once

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

namespace moremate::fuzz {

inline std::string Text(const uint8_t* data, size_t size) {
    return std::string(reinterpret_cast<const char*>(data), size);
}

// A folder under the temporary folder for this process, made on first use and removed with
// everything in it when the process ends normally.
class CFuzzFolder {
  public:
    CFuzzFolder()
        : m_path(std::filesystem::temp_directory_path() / ("moremate-fuzz-" + std::to_string(getpid()))) {
        std::filesystem::create_directories(m_path);
    }
    ~CFuzzFolder() {
        std::error_code error;
        std::filesystem::remove_all(m_path, error);
    }
    CFuzzFolder(const CFuzzFolder&) = delete;
    CFuzzFolder& operator=(const CFuzzFolder&) = delete;
    const std::filesystem::path& Path() const { return m_path; }

  private:
    std::filesystem::path m_path;
};

inline const std::filesystem::path& Folder() {
    static const CFuzzFolder folder;
    return folder.Path();
}

inline std::filesystem::path WriteFile(const std::string& name, const uint8_t* data, size_t size) {
    const std::filesystem::path file = Folder() / name;
    std::ofstream(file, std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    return file;
}

}  // namespace moremate::fuzz
