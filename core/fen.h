// FEN reading and writing. Problems are solved "in a standard way": castling rights come from
// the position and the moves already played, never from the FEN, whose castling and en passant
// fields are read only to warn that they are not honoured.
#pragma once

#include <string>

#include "chessboard.h"

namespace moremate {

struct TFenWarnings {
    bool castling = false;   // the FEN withholds a castling right the position has
    bool enPassant = false;  // the FEN names an en passant square
};

// Fills `board` from `text` and validates it (ChessException on a rule broken, or on an unknown
// piece letter). Returns false when the text is not a FEN placement at all. The board's half-move
// counts are left as they are: the side to move follows from the stipulation.
bool ReadFen(const std::string& text, TChessboard& board, TFenWarnings* warnings = nullptr);

// "Improper FEN code" for a text ReadFen refuses, followed by which field is wrong and why.
std::string ImproperFenMessage(const std::string& text);

// The side-to-move field of a FEN, for tools that honour it: true for White (also when absent).
bool FenWhiteToMove(const std::string& text);

std::string WriteFenPlacement(const TChessboard& board);
std::string WriteFen(const TChessboard& board);

}  // namespace moremate
