#include "problem_search.h"

#include <QString>
#include <algorithm>

#include "core/fen.h"

namespace moremate::ui {
namespace {

bool ContainsIgnoringCase(const std::string& text, const QString& query) {
    return QString::fromStdString(text).contains(query, Qt::CaseInsensitive);
}

}  // namespace

bool ProblemMatches(const ProblemEntry& entry, const std::string& query) {
    const QString q = QString::fromStdString(query).trimmed();
    if (q.isEmpty()) return false;
    bool number = false;
    if (q.toUInt(&number) == entry.m_nNumber && number) return true;
    if (q.section(' ', 0, 0) == QString::fromStdString(WriteFenPlacement(entry.m_position.board)))
        return true;
    if (ContainsIgnoringCase(entry.m_sDescription, q)) return true;
    return std::any_of(entry.m_annotations.vsTags.begin(), entry.m_annotations.vsTags.end(),
                       [&q](const std::string& tag) { return ContainsIgnoringCase(tag, q); });
}

int SquaresDiffering(const TChessboard& a, const TChessboard& b) {
    int count = 0;
    for (int sq = 0; sq < 64; ++sq) count += a.squares[sq] != b.squares[sq];
    return count;
}

std::vector<size_t> SimilarProblems(const std::vector<ProblemEntry>& entries, size_t index) {
    const TChessboard& board = entries.at(index).m_position.board;
    std::vector<std::pair<int, size_t>> found;
    for (size_t i = 0; i < entries.size(); ++i) {
        const int differing = SquaresDiffering(board, entries[i].m_position.board);
        if (i != index && differing <= kSimilarSquares) found.emplace_back(differing, i);
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<size_t> indexes;
    for (const auto& [differing, i] : found) indexes.push_back(i);
    return indexes;
}

bool SameProblem(const ProblemEntry& a, const ProblemEntry& b) {
    return a.m_type == b.m_type && a.m_nPlies == b.m_nPlies && a.m_position == b.m_position;
}

}  // namespace moremate::ui
