#include "mirrored_entry.h"

#include <string>

#include "core/movegen.h"
#include "core/validation.h"

namespace moremate {
namespace {

uint8_t MirroredSquare(uint8_t square) {
    return square < 64 ? static_cast<uint8_t>(MakeSquare(7 - FileOf(square), RankOf(square))) : square;
}

TMove MirroredMove(TMove move) {
    move.from = MirroredSquare(move.from);
    move.to = MirroredSquare(move.to);
    return move;
}

void MirrorMoves(std::vector<TMove>& moves) {
    for (TMove& move : moves) move = MirroredMove(move);
}

std::string ToggledPrefix(const std::string& description) {
    const std::string prefix = kMirrorPrefix;
    return description.starts_with(prefix) ? description.substr(prefix.size()) : prefix + description;
}

}  // namespace

ProblemEntry MirroredEntry(const ProblemEntry& entry) {
    ProblemEntry mirrored = entry;
    TChessboard& board = mirrored.m_position.board;
    for (int sq = 0; sq < 64; ++sq)
        board.squares[MirroredSquare(static_cast<uint8_t>(sq))] = entry.m_position.board.squares[sq];
    board.castling = HomeCastlingRights(board.squares);
    board.epSquare = kNoSquare;
    Validate(board, true);
    MirrorMoves(mirrored.m_vAnswer);
    MirrorMoves(mirrored.m_vMoves);
    mirrored.m_sDescription = ToggledPrefix(entry.m_sDescription);
    return mirrored;
}

}  // namespace moremate
