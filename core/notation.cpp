#include "notation.h"

#include <cctype>
#include <stdexcept>

#include "attacks.h"
#include "chess_exception.h"
#include "movegen.h"
#include "pieces.h"

namespace moremate {
namespace {

bool IsLetter(char c) {
    return std::isalpha(static_cast<unsigned char>(c)) != 0;
}

std::string Trimmed(const std::string& text) {
    const size_t first = text.find_first_not_of(' ');
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

// The square of a file letter (either case) and a rank digit, or -1. Letters past h and digits
// outside 1..8 are refused too, so that no text can name a square off the board.
int SquareOf(char file, char rank) {
    const int f = std::tolower(static_cast<unsigned char>(file)) - 'a';
    const int r = rank - '1';
    return OnBoard(f, r) ? MakeSquare(f, r) : -1;
}

TMove Castling(bool white, bool kingside) {
    const int rank = white ? 0 : 7;
    return TMove{static_cast<Square>(MakeSquare(4, rank)),
                 static_cast<Square>(MakeSquare(kingside ? 6 : 2, rank)), 0};
}

// The generator settles what a piece's reach cannot: pins, checks, promotions, en passant. A
// position whose side not to move stands in check (one never validated) offers the capture of a
// king, which no line may play.
void PlayLegalMove(const TChessboard& board, const TMove& move, TChessboard& child) {
    TMoveList legal;
    GenerateLegalMoves(board, legal);
    if (!legal.Contains(move) || TypeOf(board.squares[move.to]) == kKing)
        throw ChessException("Illegal move");
    PlayMove(board, move, child);
}

// Castling texts are checked against the generator only: the king's two-file step is no attack.
TMove PlayCastling(const TChessboard& board, std::string text, TChessboard& child) {
    for (char& c : text)
        if (c == 'O') c = '0';
    const TMove move = ParseFullDescription(text, board.WhiteToMove());
    PlayLegalMove(board, move, child);
    return move;
}

// Rejects the short notation: only the long one names the from-square.
void RequireLongNotation(const std::string& text) {
    const char mark = text.find(':') != std::string::npos ? ':' : 'x';
    const size_t at = text.find(mark);
    if (at == 0) throw ChessException("Improper move description");
    if ((at != std::string::npos && IsLetter(text[at - 1])) || text.size() <= 4)
        throw ChessException("Short notation not supported.");
}

// The piece named by the text (a leading letter, else a pawn) of the side to move must stand on
// the from-square, and the to-square must not hold one of its own pieces.
void RequireMovingPiece(const TChessboard& board, const std::string& text, const TMove& move) {
    const uint8_t us = board.ToMove();
    const bool pieceLetter = IsLetter(text[0]) && IsLetter(text[1]);
    const uint8_t type = pieceLetter ? TypeFromLetter(text[0], true) : uint8_t{kPawn};
    if (board.squares[move.from] != MakePiece(us, type) || ColourOf(board.squares[move.to]) == us)
        throw ChessException("Improper move description");
}

// The pawn moves that are no attack: one step, or two from the home rank over an empty square.
bool IsPawnPush(const TChessboard& board, const TMove& move) {
    const Piece piece = board.squares[move.from];
    if (TypeOf(piece) != kPawn || board.squares[move.to] != kEmpty) return false;
    const int step = ColourOf(piece) == kWhite ? 8 : -8;
    const int homeRank = ColourOf(piece) == kWhite ? 1 : 6;
    return move.to == move.from + step || (move.to == move.from + 2 * step && RankOf(move.from) == homeRank &&
                                           board.squares[move.from + step] == kEmpty);
}

// Whether the from-square is among the pieces of the side to move that attack the to-square.
bool Attacks(const TChessboard& board, const TMove& move) {
    TAttackerList attackers;
    AttackerOf(board, board.ToMove(), FileOf(move.to), RankOf(move.to), &attackers);
    for (int i = 0; i < attackers.count; ++i)
        if (MakeSquare(attackers.file[i], attackers.rank[i]) == move.from) return true;
    return false;
}

}  // namespace

int String2Square(const std::string& text) {
    const int sq = text.size() == 2 ? SquareOf(text[0], text[1]) : -1;
    if (sq < 0) throw std::runtime_error("Error in String2Square() " + text);
    return sq;
}

std::string SolutionLine(const TChessboard& board, const std::vector<TMove>& moves) {
    std::vector<TChessboard> line(moves.size() + 1);
    line[0] = board;
    std::string text;
    int number = 1;
    for (size_t i = 0; i < moves.size(); ++i) {
        if (line[i].WhiteToMove())
            text += std::to_string(number) + ". ";
        else if (i == 0)
            text += "1. ... ";
        text += MoveToText(line[i], moves[i]);
        PlayMove(line[i], moves[i], line[i + 1]);
        text += line[i + 1].InCheck() ? "+ " : " ";
        if (!line[i].WhiteToMove()) ++number;
    }
    return text;
}

TMove ParseFullDescription(const std::string& text, bool whiteMoves) {
    if (text.empty()) throw ChessException("Empty string");
    std::string move = Trimmed(text);
    if (move == "0-0" || move == "0-0-0") return Castling(whiteMoves, move == "0-0");
    uint8_t promotion = 0;
    if (!move.empty() && IsLetter(move.back())) {
        promotion = TypeFromLetter(move.back(), false);
        move.pop_back();
    }
    if (move.size() != 5 && move.size() != 6) throw ChessException("Improper string length");
    const std::string squares = move.substr(move.size() - 5);
    const int from = SquareOf(squares[0], squares[1]);
    const int to = SquareOf(squares[3], squares[4]);
    if (from < 0 || to < 0) throw ChessException("Improper full description of move");
    return TMove{static_cast<Square>(from), static_cast<Square>(to), promotion};
}

TMove MakeMove(const TChessboard& board, const std::string& text, TChessboard& child) {
    if (text.empty()) throw ChessException("Empty string");
    const std::string move = Trimmed(text);
    if (move.starts_with('0') || move.starts_with("O-")) return PlayCastling(board, move, child);
    RequireLongNotation(move);
    const TMove parsed = ParseFullDescription(move, board.WhiteToMove());
    RequireMovingPiece(board, move, parsed);
    if (!Attacks(board, parsed) && !IsPawnPush(board, parsed)) throw ChessException("Illegal move");
    PlayLegalMove(board, parsed, child);
    return parsed;
}

}  // namespace moremate
