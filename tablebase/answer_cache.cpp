#include "answer_cache.h"

#include <fstream>
#include <sstream>

#include "answer_file.h"
#include "settings/replace_file.h"

namespace moremate {

CTablebaseCache::CTablebaseCache(std::filesystem::path folder, bool readOnly)
    : m_folder(std::move(folder)), m_bReadOnly(readOnly) {}

std::filesystem::path CTablebaseCache::FilePath(const std::string& name) const {
    return m_folder / (name + ".lichess");
}

std::optional<TTablebaseAnswer> CTablebaseCache::Find(const std::string& name, const std::string& fen) const {
    std::ifstream in(FilePath(name), std::ios::binary);
    if (!in) return std::nullopt;
    std::ostringstream text;
    text << in.rdbuf();
    return ReadAnswerText(text.str(), fen);
}

bool CTablebaseCache::Store(const std::string& name, const std::string& fen,
                            const TTablebaseAnswer& answer) const {
    if (m_bReadOnly || !answer.Readable()) return false;
    std::error_code error;
    std::filesystem::create_directories(m_folder, error);
    return ReplaceFile(FilePath(name), WriteAnswerText(fen, answer));
}

}  // namespace moremate
