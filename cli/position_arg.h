// Reading a position given on the command line.
#pragma once

#include <string>

#include "core/chessboard.h"

namespace moremate::cli {

// Reads `fen` into `board`, honouring the FEN's side to move, and prepares it for solving.
// Throws ChessException with the message to show when the text is no valid position.
void ReadCommandLinePosition(const std::string& fen, TChessboard& board);

}  // namespace moremate::cli
