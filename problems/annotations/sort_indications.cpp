#include "sort_indications.h"

#include <cctype>

#include "core/chess_exception.h"
#include "core/gives_check.h"
#include "core/notation.h"
#include "core/pieces.h"

namespace moremate {
namespace {

// Figure letter, from-square, separator, to-square and promotion letter: "Qa7-a8Q" at most.
constexpr size_t kLongestMove = 7;

std::string_view Trimmed(std::string_view text) {
    const size_t first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

bool IsLetter(char c) {
    return std::isalpha(static_cast<unsigned char>(c)) != 0;
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// "1." and "12. " in front of a move.
std::string_view WithoutMoveNumber(std::string_view text) {
    size_t digits = 0;
    while (digits < text.size() && IsDigit(text[digits])) ++digits;
    if (digits == 0 || digits == text.size() || text[digits] != '.') return text;
    return Trimmed(text.substr(digits + 1));
}

int CheckMarks(std::string_view& text) {
    int checks = 0;
    while (checks < 2 && !text.empty() && text.back() == '+') {
        text.remove_suffix(1);
        ++checks;
    }
    return checks;
}

class CDescriptionReader {
  public:
    CDescriptionReader(std::string_view piece, int language)
        : m_piece(Trimmed(piece)), m_nLanguage(language) {}

    TSortMoveDescription Read() {
        std::string_view text = m_piece;
        TSortMoveDescription description;
        description.nChecks = CheckMarks(text);
        if (!text.empty() && text.back() == '*') text.remove_suffix(1);
        if (!text.empty() && text.front() == '~') {
            description.bNegated = true;
            text.remove_prefix(1);
        }
        text = WithoutMoveNumber(text);
        if (text.size() > kLongestMove)
            throw ChessException(
                "Move description too long (note that moves should be separated with a comma or semicolon)");
        ReadMove(text, description);
        return description;
    }

  private:
    [[noreturn]] void Invalid() const {
        const char* prefix = m_nLanguage == kPolish ? "Niepoprawny opis SortIndication: "
                                                    : "Invalid description of SortIndication: ";
        throw ChessException(prefix + std::string(m_piece));
    }

    int SquareAt(std::string_view text) const {
        try {
            return String2Square(std::string(text));
        } catch (const std::runtime_error&) {
            Invalid();
        }
    }

    uint8_t TypeOfLetter(char letter) const {
        try {
            return TypeFromLetter(letter, true);
        } catch (const ChessException&) {
            Invalid();
        }
    }

    void ReadMove(std::string_view text, TSortMoveDescription& description) const {
        const size_t separator = text.find_first_of(":>-");
        if (text.size() < 2 || !IsLetter(text.front()) || separator == std::string_view::npos) Invalid();
        std::string_view from = text.substr(0, separator);
        std::string_view to = text.substr(separator + 1);
        if (from.size() == 3) {
            description.nFigure = TypeOfLetter(from.front());
            from.remove_prefix(1);
        }
        if (to.size() == 3) {
            description.move.promotion = TypeOfLetter(to.back());
            if (description.move.promotion == kKing || description.move.promotion == kPawn) Invalid();
            to.remove_suffix(1);
        }
        description.move.from = static_cast<Square>(SquareAt(from));
        description.move.to = static_cast<Square>(SquareAt(to));
        description.bCapture = text[separator] == ':';
    }

    std::string_view m_piece;
    int m_nLanguage;
};

}  // namespace

TSortMoveDescription ParseSortMoveDescription(std::string_view piece, int language) {
    return CDescriptionReader(piece, language).Read();
}

TSortIndications ParseSortIndications(std::string_view text, int language) {
    TSortIndications groups(1);
    size_t start = 0;
    for (size_t end = 0; end <= text.size(); ++end) {
        if (end < text.size() && text[end] != ',' && text[end] != ';') continue;
        const std::string_view piece = text.substr(start, end - start);
        if (!Trimmed(piece).empty()) groups.back().push_back(ParseSortMoveDescription(piece, language));
        if (end < text.size() && text[end] == ';' && !groups.back().empty()) groups.emplace_back();
        start = end + 1;
    }
    if (groups.back().empty()) groups.pop_back();
    return groups;
}

std::string SortMoveDescriptionText(const TSortMoveDescription& description) {
    std::string text = description.bNegated ? "~" : "";
    if (description.nFigure != 0 && description.nFigure != kPawn) text += TypeLetter(description.nFigure);
    text += SquareText(description.move.from) + (description.bCapture ? ':' : '-') +
            SquareText(description.move.to);
    if (description.move.PromotedType() != 0) text += TypeLetter(description.move.PromotedType());
    return text + std::string(static_cast<size_t>(description.nChecks), '+');
}

std::string SortIndicationsText(const TSortIndications& indications) {
    std::string text;
    for (const TSortIndicationGroup& group : indications)
        for (const TSortMoveDescription& description : group)
            text += (text.empty() ? "" : "; ") + SortMoveDescriptionText(description);
    return text;
}

bool Describes(const TSortMoveDescription& description, const TChessboard& board, const TMove& move) {
    const TMove& described = description.move;
    if (described.from != move.from || described.to != move.to) return false;
    if (described.PromotedType() != 0 && described.PromotedType() != move.PromotedType()) return false;
    if (description.nFigure != 0 && description.nFigure != TypeOf(board.squares[move.from])) return false;
    if (description.bCapture && board.squares[move.to] == kEmpty) return false;
    return description.nChecks == 0 || GivesCheck(board, move);
}

}  // namespace moremate
