#include "line_detours.h"

#include <algorithm>
#include <deque>
#include <utility>

#include "core/movegen.h"
#include "mate_search.h"

namespace moremate {

std::vector<TMove> WithoutDetours(const TChessboard& root, const std::vector<TMove>& moves) {
    std::deque<TChessboard> line;                // stable addresses: every position links to the one before
    std::vector<std::pair<TMove, size_t>> kept;  // a move and the latest position it stands for
    for (size_t k = 0; k < moves.size(); ++k) {
        const TChessboard& before = k == 0 ? root : line.back();
        line.emplace_back();
        PlayMove(before, moves[k], line.back());
        const TChessboard& reached = line.back();
        const auto again = std::find_if(kept.begin(), kept.end(), [&](const auto& visit) {
            const TChessboard& seen = line[visit.second];
            return seen.WhiteToMove() == reached.WhiteToMove() && SamePosition(seen, reached);
        });
        if (again == kept.end()) {
            kept.emplace_back(moves[k], k);
            continue;
        }
        again->second = k;
        kept.erase(again + 1, kept.end());
    }
    std::vector<TMove> result;
    for (const auto& visit : kept) result.push_back(visit.first);
    return result;
}

}  // namespace moremate
