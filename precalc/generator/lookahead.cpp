#include "lookahead.h"

#include "core/attacks.h"
#include "core/chess_exception.h"
#include "core/validation.h"

namespace moremate {

bool SetUpPlacement(const TPrecalcType& type, uint64_t nPlacement, bool bWhiteToMove, TChessboard& board) {
    board = TChessboard{};
    if (!type.PlacementAt(nPlacement, board.squares)) return false;
    int wk = 0, bk = 0;
    for (int sq = 0; sq < 64; ++sq) {
        if (board.squares[sq] == (kWhite | kKing)) wk = sq;
        if (board.squares[sq] == (kBlack | kKing)) bk = sq;
    }
    if (KingDistance(wk, bk) <= 1) return false;
    // The side not to move in check is refused before the full validation, which would throw for
    // both kings in check: an exception per placement costs more than the rest of its work. The
    // attack test reads the pieces from the board's bit boards.
    DerivePieceBits(board);
    if (IsAttacked(board, bWhiteToMove ? bk : wk, bWhiteToMove ? kWhite : kBlack)) return false;
    board.movesLeft = board.movesAtStart = bWhiteToMove ? 3 : 2;
    try {
        Validate(board, true);
    } catch (const ChessException&) {
        return false;
    }
    return (bWhiteToMove ? board.blackKingAttacker : board.whiteKingAttacker) == -1;
}

bool EnPassantOpen(const TChessboard& board) {
    return !PrecalcCovers(board);
}

uint8_t COtherTypes::Value(const TChessboard& board) {
    TGlobalRegister* reg = m_registers.Find(board);
    if (!reg) {
        const std::optional<TPrecalcType> type = TPrecalcType::OfPosition(board.squares);
        if (type && type->WhiteBare()) return 0;
        throw ChessException(kNoGlobalRegisterText + (type ? type->Description() : std::string("?")));
    }
    const uint16_t value = reg->Storage().Element(reg->IndexOf(board));
    if (value == kUnknownMate || value >= kEscapes) return 0;
    int largest = m_nLargest.load(std::memory_order_relaxed);
    while (value > largest && !m_nLargest.compare_exchange_weak(largest, value)) {
    }
    return static_cast<uint8_t>(value);
}

}  // namespace moremate
