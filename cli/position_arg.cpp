#include "position_arg.h"

#include <fmt/core.h>

#include "core/chess_exception.h"
#include "core/fen.h"
#include "core/validation.h"

namespace moremate::cli {

void ReadCommandLinePosition(const std::string& fen, TChessboard& board) {
    TFenWarnings warnings;
    if (!ReadFen(fen, board, &warnings)) throw ChessException(ImproperFenMessage(fen));
    if (warnings.castling || warnings.enPassant)
        fmt::print(stderr,
                   "Note: Program does not consider additional information about castling or en passant "
                   "(problems are solved in a standard way: all available castlings are treated as possible; "
                   "en passant is not possible in the first move)\n");
    PrepareForSolving(board, FenWhiteToMove(fen) ? 1 : 2, true);
}

}  // namespace moremate::cli
