#include "record_reader.h"

#include <algorithm>

#include "core/chess_exception.h"
#include "core/fen.h"
#include "problem_moves.h"
#include "problem_options.h"
#include "problem_position.h"

namespace moremate {
namespace {

constexpr int kMaxStipulationPlies = kPositionPlies - 1;

bool EndsOptions(const std::string& lexeme) {
    return lexeme == "{" || IsOneOf(lexeme, {"//#TAGS", "//!VARIANTS"}) || lexeme.starts_with("//@");
}

struct TAnswerKeyword {
    const char* sKeyword;
    AnswerKind kind;
};
constexpr TAnswerKeyword kAnswerKeywords[] = {
    {"SOLUTION", AnswerKind::Full},    {"ANSWER", AnswerKind::Full},
    {"A", AnswerKind::Full},           {"EXPECTEDSORTWHITEMOVES", AnswerKind::ExpectedSort},
    {"SWM", AnswerKind::ExpectedSort}, {"EXPECTEDSORTWHITEMOVESONLY", AnswerKind::ExpectedSortOnly},
};

AnswerKind AnswerKindOf(const std::string& lexeme) {
    const std::string upper = ToUpper(lexeme);
    for (const TAnswerKeyword& keyword : kAnswerKeywords)
        if (upper == keyword.sKeyword) return keyword.kind;
    return AnswerKind::None;
}

class CRecordReader {
  public:
    CRecordReader(CProblemLexer& lexer, const TUserQuestions& questions)
        : m_lexer(lexer), m_questions(questions) {}

    std::optional<ProblemEntry> Read(const std::string& numberLexeme) {
        std::string lexeme = ReadOptions(ReadStipulation(numberLexeme));
        if (ReadAnnotations(lexeme) != "{") throw ChessException("Opening bracket expected.");
        lexeme = ReadPositionPart(ReadDescription(m_lexer.Next(true)));
        lexeme = ReadAnswer(ReadMoves(lexeme));
        if (lexeme != "}") throw ChessException("Closing bracket expected.");
        if (m_bRejected) return std::nullopt;
        return m_entry;
    }

  private:
    std::string Next() { return m_lexer.Next(true, true); }

    void RequireColon(const char* message) {
        if (m_lexer.Next(true) != ":") throw ChessException(message);
    }

    // Number, then "#n" or "s#n"; returns the lexeme after the stipulation.
    std::string ReadStipulation(const std::string& numberLexeme) {
        const std::optional<uint32_t> number = ToNumber(numberLexeme);
        if (!number) throw ChessException("Problem number expected. Found: " + numberLexeme);
        m_entry.m_nNumber = *number;
        std::string lexeme = Next();
        const bool selfmate = ToUpper(lexeme) == "S";
        if (selfmate) lexeme = Next();
        if (lexeme != "#") {
            m_entry.m_type = ProblemType::Position;
            m_entry.m_nPlies = kPositionPlies;
            return lexeme;
        }
        m_entry.m_type = selfmate ? ProblemType::Selfmate : ProblemType::Directmate;
        ReadMoveCount(m_lexer.Next(true));
        return Next();
    }

    // "3" or "3AllSolutions".
    void ReadMoveCount(const std::string& lexeme) {
        const size_t digits = std::min(lexeme.find_first_not_of("0123456789"), lexeme.size());
        const std::optional<uint32_t> moves = ToNumber(lexeme.substr(0, digits));
        if (!moves) throw ChessException("Number of moves expected after #: " + lexeme);
        const std::string suffix = lexeme.substr(digits);
        if (!suffix.empty() && ToUpper(suffix) != "ALLSOLUTIONS")
            throw ChessException("Unrecognizable option: " + suffix);
        if (!suffix.empty()) m_entry.m_nOptions |= kOptAllSolutions;
        const bool selfmate = m_entry.m_type == ProblemType::Selfmate;
        const uint64_t plies = selfmate ? 2ull * *moves + 1 : 2ull * *moves - 1;
        if (*moves == 0 || plies > kMaxStipulationPlies)
            throw ChessException("Unsupported number of moves: " + lexeme);
        m_entry.m_nPlies = static_cast<int>(plies);
    }

    std::string ReadOptions(std::string lexeme) {
        while (!EndsOptions(lexeme)) {
            if (!ReadOption(lexeme, m_lexer, m_entry))
                throw ChessException("Opening bracket expected { or unrecognized option encountered: " +
                                     lexeme);
            lexeme = Next();
        }
        return lexeme;
    }

    // Tags, variants, sort indications and the register reference, in this order.
    std::string ReadAnnotations(std::string lexeme) {
        TAnnotationLines& lines = m_entry.m_annotations;
        if (IsOneOf(lexeme, {"//#TAGS"})) {
            for (lexeme = Next(); lexeme.starts_with("//#"); lexeme = Next())
                lines.vsTags.push_back(lexeme.substr(3));
        }
        if (IsOneOf(lexeme, {"//!VARIANTS"})) {
            for (lexeme = Next(); lexeme.starts_with("//!") && !IsOneOf(lexeme, {"//!ENDVARIANTS"});
                 lexeme = Next())
                lines.vsVariantLines.push_back(lexeme.substr(3));
            if (IsOneOf(lexeme, {"//!ENDVARIANTS"})) lexeme = Next();
        }
        if (StartsWithIgnoringCase(lexeme, "//@SortIndications")) {
            lines.sSortIndications = SortIndicationsText(lexeme);
            lexeme = Next();
        }
        if (StartsWithIgnoringCase(lexeme, "//@tmpreg=")) {
            lines.sTmpReg = lexeme.substr(std::string_view("//@tmpreg=").size());
            lexeme = Next();
        }
        return lexeme;
    }

    static std::string SortIndicationsText(const std::string& line) {
        std::string text = line.substr(std::string_view("//@SortIndications").size());
        if (text.starts_with(':')) text.erase(0, 1);
        return WithoutLeadingBlanks(text);
    }

    // Optional: "D", "DESC" or "DESCRIPTION", ":" and the rest of the line.
    std::string ReadDescription(const std::string& lexeme) {
        if (!IsOneOf(lexeme, {"D", "DESC", "DESCRIPTION"})) return lexeme;
        RequireColon("Colon ':' expected after description identifier.");
        m_entry.m_sDescription = WithoutLeadingBlanks(m_lexer.RestOfLine());
        return m_lexer.Next(true);
    }

    std::string ReadPositionPart(const std::string& keyword) {
        TChessboard& board = m_entry.m_position.board;
        const std::string fen = ReadPosition(keyword, m_lexer, board);
        // The stipulation decides the side to move; only a record without one follows the FEN.
        const bool blackToMove =
            m_entry.m_type == ProblemType::Position && !fen.empty() && !FenWhiteToMove(fen);
        board.movesLeft = board.movesAtStart = static_cast<int16_t>(m_entry.m_nPlies - (blackToMove ? 1 : 0));
        if (HasTooManyQueensAndPawns(board) && !AcceptTooManyQueensAndPawns()) m_bRejected = true;
        return m_lexer.Next(true);
    }

    bool AcceptTooManyQueensAndPawns() const {
        return AskYesNo(
            m_questions,
            "Note: There are more than 9 queens and pawns of the same color. Program is able to "
            "properly handle only legal positions (in which no more than 218 moves are possible); "
            "otherwise its behaviour may be unpredictable.\nDo you want to continue anyway?");
    }

    std::string ReadMoves(const std::string& lexeme) {
        if (ToUpper(lexeme) != "MOVES") return lexeme;
        RequireColon("Colon expected after Moves section start.");
        m_entry.m_vMoves = ReadMoveSequence(m_lexer.RestOfLine(), m_entry.m_position.board);
        return m_lexer.Next(true);
    }

    std::string ReadAnswer(const std::string& lexeme) {
        const AnswerKind kind = AnswerKindOf(lexeme);
        if (kind == AnswerKind::None) return lexeme;
        RequireColon("Colon expected after correct answer identifier.");
        m_entry.m_answerKind = kind;
        m_entry.m_vAnswer = ReadAnswerMoves(m_lexer);
        return m_lexer.Next(true);
    }

    CProblemLexer& m_lexer;
    const TUserQuestions& m_questions;
    ProblemEntry m_entry;
    bool m_bRejected = false;
};

}  // namespace

std::optional<ProblemEntry> ReadRecord(const std::string& numberLexeme, CProblemLexer& lexer,
                                       const TUserQuestions& questions) {
    return CRecordReader(lexer, questions).Read(numberLexeme);
}

}  // namespace moremate
