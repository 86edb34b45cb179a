// Helpers of the problem tests: collections read from inline text, and a scratch folder.
#pragma once

#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "problems/collection_reader.h"
#include "problems/record_writer.h"

namespace moremate {

// Failed comparisons of records show their text.
inline void PrintTo(const ProblemEntry& entry, std::ostream* out) {
    *out << WriteRecord(entry);
}

}  // namespace moremate

namespace moremate::testing {

inline std::vector<ProblemEntry> ReadAll(const std::string& text, const TCollectionReading& reading = {}) {
    std::vector<ProblemEntry> entries;
    ReadCollectionText(text, entries, reading);
    return entries;
}

// The single record of `text`.
inline ProblemEntry ReadOne(const std::string& text) {
    const std::vector<ProblemEntry> entries = ReadAll(text);
    if (entries.size() != 1) throw std::logic_error("expected one record");
    return entries.front();
}

// The message of the fault that reading `text` raises, or "" when it reads.
inline std::string ReadError(const std::string& text) {
    try {
        ReadAll(text);
    } catch (const CCollectionReadError& error) {
        return error.what();
    }
    return "";
}

inline std::string FileText(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// A fresh folder under the system's temporary folder, removed with its contents at the end.
class CTempFolder {
  public:
    CTempFolder() {
        static std::atomic<int> s_nCount{0};
        m_path = std::filesystem::temp_directory_path() /
                 ("moremate-problems-" + std::to_string(getpid()) + "-" + std::to_string(s_nCount++));
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

  private:
    std::filesystem::path m_path;
};

}  // namespace moremate::testing
