#include "problem_moves.h"

#include <sstream>

#include "core/chess_exception.h"
#include "core/notation.h"
#include "core/pieces.h"

namespace moremate {
namespace {

// The square of a file letter (either case) and a rank digit at the start of `text`, or -1.
int LeadingSquare(const std::string& text) {
    try {
        return String2Square(text.substr(0, 2));
    } catch (const std::runtime_error&) {
        return -1;
    }
}

bool IsPromotionType(uint8_t type) {
    return type == kQueen || type == kRook || type == kBishop || type == kKnight;
}

uint8_t PromotionOf(char letter, const std::string& move) {
    try {
        const uint8_t type = TypeFromLetter(letter, false);
        if (IsPromotionType(type)) return type;
    } catch (const ChessException&) {
    }
    throw ChessException("Invalid correct answer: " + move);
}

TMove ReadAnswerMove(CProblemLexer& lexer) {
    const std::string from = lexer.Next(true);
    if (from.size() != 2 || LeadingSquare(from) < 0)
        throw ChessException("Invalid correct answer ('from' element): " + from);
    const std::string separator = lexer.Next(true);
    if (separator != "-" && separator != ":")
        throw ChessException("Hyphen expected to separate correct answer elements");
    const std::string to = lexer.Next(true);
    if (to.size() < 2 || to.size() > 3 || LeadingSquare(to) < 0)
        throw ChessException("Invalid correct answer ('to' element): " + to);
    TMove move{static_cast<Square>(LeadingSquare(from)), static_cast<Square>(LeadingSquare(to)), 0};
    if (to.size() == 3) move.promotion = PromotionOf(to[2], from + separator + to);
    return move;
}

// "12." and "1..." number a move; "..." stands for White's move before a line that Black begins.
std::string WithoutMoveNumber(const std::string& word) {
    const size_t digits = word.find_first_not_of("0123456789");
    if (digits == std::string::npos || word[digits] != '.') return word;
    const size_t rest = word.find_first_not_of('.', digits);
    return rest == std::string::npos ? std::string() : word.substr(rest);
}

std::string WithoutCheckMarks(std::string word) {
    while (!word.empty() && (word.back() == '+' || word.back() == '#')) word.pop_back();
    return word;
}

}  // namespace

std::vector<TMove> ReadAnswerMoves(CProblemLexer& lexer) {
    std::vector<TMove> moves{ReadAnswerMove(lexer)};
    for (;;) {
        const size_t before = lexer.Position();
        const std::string lexeme = lexer.Next(true);
        if (lexeme == "}") {
            lexer.Rewind(before);
            return moves;
        }
        if (lexeme != ",")
            throw ChessException("Comma should separate various solutions of the problem, but encountered: " +
                                 lexeme);
        moves.push_back(ReadAnswerMove(lexer));
    }
}

std::string AnswerMoveText(const TChessboard& board, const TMove& move) {
    std::string text =
        SquareText(move.from) + (board.squares[move.to] != kEmpty ? ':' : '-') + SquareText(move.to);
    if (move.PromotedType()) text += TypeLetter(move.PromotedType());
    return text;
}

std::string AnswerText(const TChessboard& board, const std::vector<TMove>& moves) {
    std::string text;
    for (const TMove& move : moves) text += (text.empty() ? "" : ", ") + AnswerMoveText(board, move);
    return text;
}

std::vector<TMove> ReadMoveSequence(const std::string& text, const TChessboard& start,
                                    std::string_view invalidPrefix, std::string_view invalidSuffix) {
    std::vector<TChessboard> line;
    line.reserve(text.size() / 2 + 1);  // no more moves than half the characters: pointers stay valid
    line.push_back(start);
    std::vector<TMove> moves;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        const std::string move = WithoutCheckMarks(WithoutMoveNumber(word));
        if (move.empty()) continue;
        TChessboard child;
        try {
            moves.push_back(MakeMove(line.back(), move, child));
        } catch (const ChessException&) {
            throw ChessException(std::string(invalidPrefix) + move + std::string(invalidSuffix));
        }
        line.push_back(child);
    }
    return moves;
}

std::string MoveSequenceText(const TChessboard& start, const std::vector<TMove>& moves) {
    std::string text = SolutionLine(start, moves);
    while (!text.empty() && text.back() == ' ') text.pop_back();
    return text;
}

}  // namespace moremate
