// Piece letters and the interface's piece columns.
#pragma once

#include <string>

#include "types.h"

namespace moremate {

// "K", "B", "R", "Q", "N" for the types, a blank for the pawn and "E" for anything else.
char TypeLetter(uint8_t type);
// Type of an English or Polish FEN letter (either case), and with `moveText` also the German
// letters of move texts (D, T, L). Throws ChessException "Unknown figure letter: X".
uint8_t TypeFromLetter(char letter, bool moveText);

// Columns 0..5: king, queen, rook, bishop, knight, pawn. Empty maps to -1.
int PieceToColumn(uint8_t type);
uint8_t ColumnToPiece(int column);

}  // namespace moremate
