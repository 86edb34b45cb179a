#include "problem_entry.h"

#include <algorithm>

namespace moremate {

bool operator==(const TStartPosition& a, const TStartPosition& b) {
    return std::equal(std::begin(a.board.squares), std::end(a.board.squares), std::begin(b.board.squares)) &&
           a.board.castling == b.board.castling && a.board.movesLeft == b.board.movesLeft;
}

int ProblemEntry::StipulationMoves() const {
    return m_type == ProblemType::Selfmate ? m_nPlies / 2 : (m_nPlies + 1) / 2;
}

}  // namespace moremate
