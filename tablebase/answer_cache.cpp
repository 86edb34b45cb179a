#include "answer_cache.h"

#include "answer_file.h"
#include "lichess_http.h"
#include "settings/bounded_file.h"
#include "settings/replace_file.h"

namespace moremate {
namespace {

// A cached answer is the position's line and the service's answer, which is cut at kMaxAnswerBytes.
// A larger file, a folder, a pipe or a device in its place is refused by name (ChessException).
constexpr uint64_t kCacheFileLimit = 2 * kMaxAnswerBytes;

}  // namespace

CTablebaseCache::CTablebaseCache(std::filesystem::path folder, bool readOnly)
    : m_folder(std::move(folder)), m_bReadOnly(readOnly) {}

std::filesystem::path CTablebaseCache::FilePath(const std::string& name) const {
    return m_folder / (name + ".lichess");
}

std::optional<TTablebaseAnswer> CTablebaseCache::Find(const std::string& name, const std::string& fen) const {
    const std::filesystem::path file = FilePath(name);
    std::error_code error;
    if (!std::filesystem::exists(file, error)) return std::nullopt;
    return ReadAnswerText(ReadTextFile(file, {.nFileBytes = kCacheFileLimit, .nStreamBytes = 0}), fen);
}

bool CTablebaseCache::Store(const std::string& name, const std::string& fen,
                            const TTablebaseAnswer& answer) const {
    if (m_bReadOnly || !answer.Readable()) return false;
    std::error_code error;
    std::filesystem::create_directories(m_folder, error);
    return ReplaceFile(FilePath(name), WriteAnswerText(fen, answer));
}

}  // namespace moremate
