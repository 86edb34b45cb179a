// The tablebase answers kept on disk: one file per position in "SavedTmpSyzygyData" of the program
// folder, named by the position's identifier with ".lichess", so that a position is asked only
// once. Files are written to a temporary name and renamed; an instance that may not write (not the
// first running one) only reads them.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "tablebase_answer.h"

namespace moremate {

inline constexpr const char* kTablebaseCacheFolder = "SavedTmpSyzygyData";

class CTablebaseCache {
  public:
    CTablebaseCache(std::filesystem::path folder, bool readOnly);

    // The stored answer about `fen`, whose file is `name` + ".lichess"; none when there is no
    // such file, or it holds another position or cannot be read (it is then asked again).
    std::optional<TTablebaseAnswer> Find(const std::string& name, const std::string& fen) const;

    // Stores a readable answer; false when nothing was written (read-only, or a failed write).
    bool Store(const std::string& name, const std::string& fen, const TTablebaseAnswer& answer) const;

    bool ReadOnly() const { return m_bReadOnly; }
    std::filesystem::path FilePath(const std::string& name) const;

  private:
    std::filesystem::path m_folder;
    bool m_bReadOnly;
};

}  // namespace moremate
