// Squares and moves as text: the long algebraic notation in which every move, solution and log
// line is printed, and the parsers that read moves back.
#pragma once

#include <string>
#include <vector>

#include "chessboard.h"

namespace moremate {

// "e4" and "E4" alike; throws "Error in String2Square() " followed by the text.
int String2Square(const std::string& text);
// Always lower case: "e4".
std::string SquareText(int sq);

// Long notation: "e2-e4", "Rh4-g4", "Qc5:c1", "e7:d8Q", "0-0", "0-0-0"; the null move is "-".
std::string MoveToText(const TMove& move, Piece moving, bool captures);
// The same for a move about to be played in `board` (piece and capture read off the board).
std::string MoveToText(const TChessboard& board, const TMove& move);

// Numbered line of play from `board`: "1. Rh4-g4 Kg1-h2 2. ...", "+" after checking moves; a
// line that starts with Black's move begins "1. ...". Moves are assumed legal.
std::string SolutionLine(const TChessboard& board, const std::vector<TMove>& moves);

// Parses a full description ("e2-e4", "Rh4-g4", "e7:d8Q", "0-0") for White or Black.
// Throws ChessException "Empty string", "Improper string length" or
// "Improper full description of move".
TMove ParseFullDescription(const std::string& text, bool whiteMoves);

// Checks a long-notation move against `board`, plays it into `child` and returns the move.
// Throws ChessException ("Empty string", "Improper move description",
// "Short notation not supported.", "Illegal move", ...); `child` is then not to be used.
TMove MakeMove(const TChessboard& board, const std::string& text, TChessboard& child);

}  // namespace moremate
