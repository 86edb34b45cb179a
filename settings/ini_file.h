// Initialization files: "[section]" headers and "key=value" lines. Section and key names compare
// without regard to case. Every call reads the file afresh, so a file edited by hand while the
// program runs is seen, and a write keeps everything it does not touch. A file that cannot be
// one (a folder, a device, over 1 MB) is refused: reads throw ChessException naming it, writes
// fail.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace moremate {

class CIniFile {
  public:
    explicit CIniFile(std::filesystem::path path) : m_path(std::move(path)) {}

    const std::filesystem::path& Path() const { return m_path; }

    // An optional sign and the leading digits of the value; a value that does not start with a
    // number reads as 0. A missing file, section or key, or an empty value, gives `defaultValue`.
    // Digits wrap modulo 2^32, so that an unsigned 32-bit mask written as a number reads back.
    int ReadInt(std::string_view section, std::string_view key, int defaultValue) const;

    // The value without surrounding blanks and quotes, cut to `maxLength` characters (UTF-8 code
    // points). A missing file, section or key gives `defaultValue`.
    std::string ReadString(std::string_view section, std::string_view key, std::string_view defaultValue,
                           std::size_t maxLength) const;

    // Sets one key and keeps every other line, comment, order and line ending of the file. A
    // missing section is appended, a missing file created. The new contents go to a temporary
    // file that then replaces the old one, so a failed write never leaves half a file behind.
    bool WriteString(std::string_view section, std::string_view key, std::string_view value) const;
    bool WriteInt(std::string_view section, std::string_view key, long long value) const;

  private:
    std::filesystem::path m_path;
};

}  // namespace moremate
