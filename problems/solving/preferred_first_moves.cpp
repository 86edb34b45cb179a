#include "preferred_first_moves.h"

#include <algorithm>

#include "core/movegen.h"
#include "problems/annotations/problem_variants.h"
#include "problems/annotations/sort_indications.h"

namespace moremate {
namespace {

void AddOnce(std::vector<TMove>& moves, const TMove& move) {
    if (std::ranges::find(moves, move) == moves.end()) moves.push_back(move);
}

// The first moves of the variants the mode uses, the main variant first.
std::vector<TMove> VariantFirstMoves(const ProblemEntry& entry) {
    std::vector<TMove> moves;
    if (entry.m_sortIndicationMode == SortIndicationMode::None) return moves;
    const TVariants variants = ReadVariants(entry).variants;
    if (const auto main = variants.find(kMainVariantName); main != variants.end() && !main->second.empty())
        moves.push_back(main->second.front());
    if (entry.m_sortIndicationMode != SortIndicationMode::AllVariants) return moves;
    for (const auto& [name, line] : variants)
        if (!line.empty()) AddOnce(moves, line.front());
    return moves;
}

}  // namespace

std::vector<TMove> PreferredFirstMoves(const ProblemEntry& entry, int language) {
    const TChessboard& board = entry.m_position.board;
    const std::optional<std::string>& text = entry.m_annotations.sSortIndications;
    const TSortIndications indications = text ? ParseSortIndications(*text, language) : TSortIndications{};
    TMoveList legal;
    GenerateLegalMoves(board, legal);
    std::vector<TMove> preferred;
    std::vector<TMove> negated;
    for (const TSortIndicationGroup& group : indications)
        for (const TSortMoveDescription& description : group)
            for (const TMove& move : legal)
                if (Describes(description, board, move))
                    AddOnce(description.bNegated ? negated : preferred, move);
    for (const TMove& move : VariantFirstMoves(entry)) AddOnce(preferred, move);
    std::erase_if(preferred,
                  [&](const TMove& move) { return std::ranges::find(negated, move) != negated.end(); });
    return preferred;
}

}  // namespace moremate
