#include "search_log.h"

#include <fmt/core.h>

#include <filesystem>
#include <mutex>

#include "core/fen.h"
#include "core/notation.h"
#include "engine/heuristics/heuristic_names.h"
#include "engine/state/search_result.h"

namespace moremate {
namespace {

std::mutex g_moveLogLock;
std::mutex g_poorSortLock;

constexpr int kMaxLoggedHalfMoves = 600;

std::string Path(const std::string& folder, const std::string& name) {
    return (std::filesystem::path(folder.empty() ? "." : folder) / name).string();
}

}  // namespace

std::string DoubtReasonText(uint32_t reason) {
    if (reason == 0 || reason == 0xFFFFFFFFu)
        return fmt::format("{} ({} (temp.reg.))", SearchResultWord(kDoubtful), reason);
    if (reason >= 0xFFFFFFE0u) return fmt::format("{}/impossible ({})", SearchResultWord(kDoubtful), reason);
    return fmt::format("{} ({})", SearchResultWord(kDoubtful), HeuristicName(reason));
}

CSearchLog::CSearchLog(const std::string& folder, unsigned problem, unsigned thread)
    : m_file(Path(folder, fmt::format("MovesLogger_problem{}_thr{}.log", problem, thread)), std::ios::app) {}

void CSearchLog::Result(int played, const TMove& move, uint8_t result, uint32_t doubtReason) {
    if (played > kMaxLoggedHalfMoves || !m_file.is_open()) return;
    std::string line(static_cast<size_t>(std::max(played, 0)), '\t');
    const int number = (std::max(played, 1) - 1) / 2 + 1;
    line += fmt::format("{}{} {}-{} ", number, played % 2 == 1 ? "." : " ...", SquareText(move.from),
                        SquareText(move.to));
    line += result == kDoubtful ? DoubtReasonText(doubtReason) : SearchResultWord(result);
    std::lock_guard lock(g_moveLogLock);
    m_file << line << '\n';
}

void CSearchLog::Line(const std::string& text) {
    if (!m_file.is_open()) return;
    std::lock_guard lock(g_moveLogLock);
    m_file << text << '\n';
}

void CSearchLog::PoorlySortedMove(const std::string& folder, const TChessboard& board, const TMove& move,
                                  int index) {
    std::lock_guard lock(g_poorSortLock);
    std::ofstream out(Path(folder, "PoorSWM.log"), std::ios::app);
    out << fmt::format("\n{} #{}, move {} sorted as {}th", WriteFenPlacement(board), board.movesLeft / 2 + 1,
                       MoveToText(board, move), index);
}

}  // namespace moremate
