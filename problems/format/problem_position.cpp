#include "problem_position.h"

#include <algorithm>

#include "core/chess_exception.h"
#include "core/fen.h"
#include "core/movegen.h"
#include "core/notation.h"
#include "core/pieces.h"
#include "core/validation.h"

namespace moremate {
namespace {

void RequireColon(CProblemLexer& lexer, const char* message) {
    if (lexer.Next(true) != ":") throw ChessException(message);
}

struct TListTexts {
    uint8_t colour;
    const char* sSpecificationInvalid;
    const char* sPositionInvalid;
};
constexpr TListTexts kWhiteList{
    kWhite, "White figure specification is invalid: ", "White figure position is invalid: "};
constexpr TListTexts kBlackList{
    kBlack, "Black figure specification is invalid: ", "Black figure position is invalid: "};

// One entry such as "Ke1": a figure letter and a square.
void PlaceFigure(const std::string& entry, const TListTexts& list, uint8_t* squares) {
    if (entry.size() != 3 || !IsIdentifier(entry)) throw ChessException(list.sSpecificationInvalid + entry);
    uint8_t type = 0;
    try {
        type = TypeFromLetter(entry[0], false);
    } catch (const ChessException&) {
        throw ChessException(list.sSpecificationInvalid + entry);
    }
    int sq = 0;
    try {
        sq = String2Square(entry.substr(1));
    } catch (const std::runtime_error&) {
        throw ChessException(list.sPositionInvalid + entry);
    }
    if (squares[sq] != kEmpty) throw ChessException("Square " + SquareText(sq) + " already occupied.");
    squares[sq] = MakePiece(list.colour, type);
}

// Entries separated by ","; the lexeme after the last entry is left unread.
void ReadFigureList(CProblemLexer& lexer, const TListTexts& list, uint8_t* squares) {
    for (;;) {
        PlaceFigure(lexer.Next(true), list, squares);
        const size_t after = lexer.Position();
        if (lexer.Next(true) != ",") {
            lexer.Rewind(after);
            return;
        }
    }
}

void ReadFigureLists(const std::string& keyword, CProblemLexer& lexer, TChessboard& board) {
    if (!IsOneOf(keyword, {"W", "WH", "WHITE"}))
        throw ChessException("White figures identifier expected (W, WH or WHITE).");
    RequireColon(lexer, "Colon ':' expected after white figures identifier.");
    uint8_t squares[64] = {};
    ReadFigureList(lexer, kWhiteList, squares);
    if (!IsOneOf(lexer.Next(true), {"B", "BL", "BLACK"}))
        throw ChessException("Black figures identifier expected (B, BL or BLACK).");
    RequireColon(lexer, "Colon expected after black figures identifier.");
    ReadFigureList(lexer, kBlackList, squares);
    std::copy(std::begin(squares), std::end(squares), board.squares);
    board.previous = nullptr;
    board.lastMove = TMove{};
    board.epSquare = kNoSquare;
    board.castling = HomeCastlingRights(board.squares);
    Validate(board, true);
}

}  // namespace

std::string ReadPosition(const std::string& keyword, CProblemLexer& lexer, TChessboard& board) {
    if (ToUpper(keyword) != "FEN") {
        ReadFigureLists(keyword, lexer, board);
        return {};
    }
    RequireColon(lexer, "Colon ':' expected after FEN identifier.");
    const std::string fen = WithoutLeadingBlanks(lexer.RestOfLine());
    if (!ReadFen(fen, board)) throw ChessException(ImproperFenMessage(fen));
    return fen;
}

bool HasTooManyQueensAndPawns(const TChessboard& board) {
    return board.whiteQueens + board.whitePawns > 9 || board.blackQueens + board.blackPawns > 9;
}

}  // namespace moremate
