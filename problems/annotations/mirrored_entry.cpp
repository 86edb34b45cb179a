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

// Moves written in long notation ("1. Qa7-a1+", "e7:d8Q", "~Kc1-d2+"): every file letter, and
// only they, are lower case.
std::string MirroredMoveText(std::string text) {
    for (char& c : text)
        if (c >= 'a' && c <= 'h') c = static_cast<char>('h' - (c - 'a'));
    return text;
}

// A stored variant line: the name, ": " and the moves.
std::string MirroredVariantLine(const std::string& line) {
    const size_t colon = line.rfind(": ");
    if (colon == std::string::npos) return line;
    return line.substr(0, colon) + MirroredMoveText(line.substr(colon));
}

void MirrorAnnotations(ProblemEntry& mirrored) {
    for (std::string& line : mirrored.m_annotations.vsVariantLines) line = MirroredVariantLine(line);
    std::optional<std::string>& sort = mirrored.m_annotations.sSortIndications;
    if (sort) sort = MirroredMoveText(*sort);
    for (auto& [name, pair] : mirrored.m_mapVariantPairs)
        pair = {MirroredMoveText(pair.sMoves), MirroredMoveText(pair.sDefences)};
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
    MirrorAnnotations(mirrored);
    mirrored.m_sDescription = ToggledPrefix(entry.m_sDescription);
    return mirrored;
}

}  // namespace moremate
