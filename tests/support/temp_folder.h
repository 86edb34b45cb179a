// A fresh folder under the system's temporary folder, removed with everything in it at the end
// of the test, so that tests never touch the program folder or each other's files.
#pragma once

#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <string>

namespace moremate::testing {

class CTempFolder {
  public:
    CTempFolder() {
        static std::atomic<int> s_nCount{0};
        m_path = std::filesystem::temp_directory_path() /
                 ("moremate-test-" + std::to_string(getpid()) + "-" + std::to_string(s_nCount++));
        std::filesystem::create_directories(m_path);
    }
    ~CTempFolder() {
        std::error_code error;
        std::filesystem::remove_all(m_path, error);
    }
    CTempFolder(const CTempFolder&) = delete;
    CTempFolder& operator=(const CTempFolder&) = delete;

    const std::filesystem::path& Path() const { return m_path; }
    std::filesystem::path File(const std::string& name) const { return m_path / name; }

    std::filesystem::path Write(const std::string& name, const std::string& content) const {
        std::ofstream(File(name), std::ios::binary) << content;
        return File(name);
    }

    std::string Read(const std::string& name) const {
        std::ifstream in(File(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }

  private:
    std::filesystem::path m_path;
};

}  // namespace moremate::testing
