#include "transform.h"

#include <charconv>
#include <cstring>
#include <string_view>

#include "chess_exception.h"
#include "movegen.h"
#include "validation.h"

namespace moremate {
namespace {

const std::string kRotatedPrefix = "Rotated ";
const std::string kDegreesSeparator = "°: ";

Piece WithColoursExchanged(Piece piece) {
    return piece == kEmpty ? kEmpty : static_cast<Piece>(Opponent(ColourOf(piece)) | TypeOf(piece));
}

// The transformed squares start a new problem: no line played before, castling as set up, and
// the rules checked afresh. A broken rule is reported, not thrown: the user sees the new board.
std::optional<std::string> SetUpTransformed(TChessboard& board, const uint8_t* squares) {
    std::memcpy(board.squares, squares, 64);
    board.castling = HomeCastlingRights(board.squares);
    board.previous = nullptr;
    board.lastMove = TMove{};
    board.epSquare = kNoSquare;
    try {
        Validate(board, true);
    } catch (const ChessException& e) {
        return e.what();
    }
    return std::nullopt;
}

// n of a leading "Rotated n°", when n counts whole quarter turns.
std::optional<unsigned> RotatedDegrees(const std::string& description) {
    if (!description.starts_with(kRotatedPrefix)) return std::nullopt;
    const char* first = description.data() + kRotatedPrefix.size();
    const char* last = description.data() + description.size();
    unsigned degrees = 0;
    const auto [end, error] = std::from_chars(first, last, degrees);
    if (error != std::errc{} || !std::string_view(end, last).starts_with("°") || degrees % 90 != 0)
        return std::nullopt;
    return degrees;
}

// The prefix counts the turns so that the fourth one gives back the first description.
std::string RotatedDescription(const std::string& description) {
    const std::optional<unsigned> degrees = RotatedDegrees(description);
    if (!degrees) return kRotatedPrefix + "90" + kDegreesSeparator + description;
    const size_t colon = description.find(": ");
    const std::string rest = colon == std::string::npos ? "" : description.substr(colon + 2);
    if (*degrees == 270) return rest;
    return kRotatedPrefix + std::to_string(*degrees + 90) + kDegreesSeparator + rest;
}

}  // namespace

std::optional<std::string> SwapColours(TChessboard& board, std::string& description) {
    uint8_t squares[64];
    for (int sq = 0; sq < 64; ++sq)
        squares[sq] = WithColoursExchanged(board.squares[MakeSquare(FileOf(sq), 7 - RankOf(sq))]);
    description = "B&Wh.swapped: " + description;
    return SetUpTransformed(board, squares);
}

std::optional<std::string> Shift(TChessboard& board, int files, int ranks) {
    uint8_t squares[64] = {};
    for (int sq = 0; sq < 64; ++sq) {
        if (board.squares[sq] == kEmpty) continue;
        const int file = FileOf(sq) + files, rank = RankOf(sq) + ranks;
        if (file < 0 || file > 7 || rank < 0 || rank > 7)
            throw ChessException("The position cannot be shifted: a piece would leave the board");
        squares[MakeSquare(file, rank)] = board.squares[sq];
    }
    return SetUpTransformed(board, squares);
}

std::optional<std::string> Rotate90(TChessboard& board, std::string& description) {
    uint8_t squares[64];
    for (int sq = 0; sq < 64; ++sq) squares[MakeSquare(RankOf(sq), 7 - FileOf(sq))] = board.squares[sq];
    description = RotatedDescription(description);
    return SetUpTransformed(board, squares);
}

}  // namespace moremate
