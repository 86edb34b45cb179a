#include "coherence_report.h"

#include "core/chess_exception.h"
#include "core/fen.h"
#include "core/validation.h"

namespace moremate {

std::string RegisterItemFen(const TChessboardRegisterItem& item, uint16_t n) {
    TChessboard board = ChessboardOf(item, n);
    try {
        Validate(board, true);
    } catch (const ChessException&) {
        return WriteFenPlacement(board);
    }
    return WriteFen(board);
}

std::string IncoherenceReport(uint16_t n, bool bThereIsMate, const TChessboardRegisterEntry& entry) {
    return "\n\nnMoves=" + std::to_string(n) + ", bThereIsMate=" + std::to_string(bThereIsMate ? 1 : 0) +
           "\nMovesMate=" + std::to_string(entry.MovesMate) +
           ", MovesNoMate=" + std::to_string(entry.MovesNoMate) + "\n" + RegisterItemFen(entry.key, n);
}

}  // namespace moremate
