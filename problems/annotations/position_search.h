// Searches of outside problem databases for a position: per database an address that asks the
// site for the problems with the position's material. PDB's query language counts each side's
// pieces and reads the stipulation; the other sites get the pieces, "wKa1 wQd4 bKh8", as the
// query of their search page.
#pragma once

#include <string>
#include <string_view>

#include "core/chessboard.h"
#include "database_links.h"

namespace moremate {

// The pieces of the board as problem notation lists them: White's then Black's, each side king,
// queens, rooks, bishops, knights and pawns, each kind by squares from a1 to h8, each piece its
// colour letter, piece letter and square ("wKe1 wRh1 bKa8").
std::string PositionPiecesText(const TChessboard& board);

// `text` with every byte but letters, digits and "-_.~" written as "%XX".
std::string PercentEncoded(std::string_view text);

// The address that searches `database` for the position of `board` as a mate in `moves`.
std::string PositionSearchLink(ProblemDatabase database, const TChessboard& board, int moves);

}  // namespace moremate
