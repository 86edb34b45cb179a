#include "fen.h"

#include <cctype>
#include <sstream>
#include <vector>

#include "movegen.h"
#include "pieces.h"
#include "validation.h"

namespace moremate {
namespace {

std::vector<std::string> Fields(const std::string& text) {
    std::istringstream in(text);
    std::vector<std::string> fields;
    for (std::string f; in >> f;) fields.push_back(f);
    return fields;
}

std::string RankName(int rank) {
    return "rank " + std::to_string(rank + 1);
}

// Reads the placement into `squares`; the fault when it is not eight ranks of eight squares.
std::string ReadPlacement(const std::string& placement, uint8_t* squares) {
    int rank = 7, file = 0;
    for (char c : placement) {
        if (c == '/') {
            if (file != 8) return RankName(rank) + " has " + std::to_string(file) + " squares, 8 expected";
            if (rank == 0) return "more than 8 ranks";
            --rank;
            file = 0;
        } else if (c >= '1' && c <= '8') {
            file += c - '0';
            if (file > 8) return RankName(rank) + " has more than 8 squares";
        } else if (std::isalpha(static_cast<unsigned char>(c))) {
            if (file >= 8) return RankName(rank) + " has more than 8 squares";
            const uint8_t colour = std::isupper(static_cast<unsigned char>(c)) ? kWhite : kBlack;
            squares[MakeSquare(file++, rank)] = MakePiece(colour, TypeFromLetter(c, false));
        } else {
            return std::string("unexpected character '") + c + "'";
        }
    }
    if (rank != 0) return std::to_string(8 - rank) + " ranks, 8 expected";
    if (file != 8) return RankName(rank) + " has " + std::to_string(file) + " squares, 8 expected";
    return "";
}

// Why the text is not a FEN placement at all; "" when it is one.
std::string PlacementFault(const std::string& text, uint8_t* squares) {
    if (text.find('{') != std::string::npos) return "unexpected '{'";
    if (text.find('/') == std::string::npos) return "no '/' between ranks";
    return ReadPlacement(text.substr(0, text.find(' ')), squares);
}

uint8_t FenCastlingFlags(const std::string& text) {
    const size_t blank = text.find(' ');
    if (blank == std::string::npos)
        return kWhiteKingside | kWhiteQueenside | kBlackKingside | kBlackQueenside;
    uint8_t flags = 0;
    for (char c : text.substr(blank)) {
        if (c == 'K') flags |= kWhiteKingside;
        if (c == 'Q') flags |= kWhiteQueenside;
        if (c == 'k') flags |= kBlackKingside;
        if (c == 'q') flags |= kBlackQueenside;
    }
    return flags;
}

}  // namespace

bool ReadFen(const std::string& text, TChessboard& board, TFenWarnings* warnings) {
    uint8_t squares[64] = {};
    if (!PlacementFault(text, squares).empty()) return false;
    for (int i = 0; i < 64; ++i) board.squares[i] = squares[i];
    board.previous = nullptr;
    board.lastMove = TMove{};
    board.epSquare = kNoSquare;
    board.castling = HomeCastlingRights(board.squares);
    Validate(board, true);
    if (warnings) {
        const std::vector<std::string> fields = Fields(text);
        warnings->castling = (CastlingRights(board) & ~FenCastlingFlags(text)) != 0;
        warnings->enPassant = fields.size() > 3 && fields[3][0] != '-';
    }
    return true;
}

std::string ImproperFenMessage(const std::string& text) {
    uint8_t squares[64] = {};
    const std::string sFault = PlacementFault(text, squares);
    return sFault.empty() ? "Improper FEN code"
                          : "Improper FEN code: piece placement (first field): " + sFault;
}

bool FenWhiteToMove(const std::string& text) {
    const std::vector<std::string> fields = Fields(text);
    return fields.size() < 2 || fields[1] != "b";
}

std::string WriteFenPlacement(const TChessboard& board) {
    std::string out;
    for (int rank = 7; rank >= 0; --rank) {
        int run = 0;
        for (int file = 0; file < 8; ++file) {
            const Piece p = board.squares[MakeSquare(file, rank)];
            if (p == kEmpty) {
                ++run;
                continue;
            }
            if (run) out += static_cast<char>('0' + run);
            run = 0;
            const char letter = TypeOf(p) == kPawn ? 'P' : TypeLetter(TypeOf(p));
            out += ColourOf(p) == kWhite ? letter : static_cast<char>(std::tolower(letter));
        }
        if (run) out += static_cast<char>('0' + run);
        if (rank) out += '/';
    }
    return out;
}

std::string WriteFen(const TChessboard& board) {
    std::string out = WriteFenPlacement(board);
    out += board.WhiteToMove() ? " w " : " b ";
    const uint8_t rights = CastlingRights(board);
    if (!rights) out += '-';
    if (rights & kWhiteKingside) out += 'K';
    if (rights & kWhiteQueenside) out += 'Q';
    if (rights & kBlackKingside) out += 'k';
    if (rights & kBlackQueenside) out += 'q';
    // The en passant square is paired with the side to move exactly as the program always has.
    const TMove& last = board.lastMove;
    const Piece moved = board.squares[last.to];
    int passed = -1;
    if (board.WhiteToMove() && moved == (kWhite | kPawn) && last.to - last.from == 16) passed = last.from + 8;
    if (!board.WhiteToMove() && moved == (kBlack | kPawn) && last.from - last.to == 16) passed = last.to + 8;
    if (passed >= 0) {
        out += ' ';
        out += static_cast<char>('A' + FileOf(passed));
        out += static_cast<char>('1' + RankOf(passed));
    } else {
        out += " -";
    }
    out += " 0 " + std::to_string((board.movesAtStart - board.movesLeft) / 2 + 1);
    return out;
}

}  // namespace moremate
