#include "register_reference_text.h"

#include "core/chess_exception.h"
#include "problems/format/collection_reader.h"
#include "problems/format/problem_lexer.h"
#include "problems/format/record_reader.h"

namespace moremate {
namespace {

constexpr std::string_view kReferencePrefix = "//@tmpreg=";

// Where a record's reference goes: its line, when it has one, else before its "{".
struct TReferencePlace {
    size_t nInsertAt = 0;
    size_t nLineStart = std::string_view::npos;  // the reference line, when there is one,
    size_t nLineEnd = 0;                         // with its line end
};

// Reads the record's heading up to its "{", noting its reference line.
TReferencePlace FindReferencePlace(std::string_view text, CProblemLexer& lexer) {
    TReferencePlace place;
    for (;;) {
        const std::string lexeme = lexer.Next(true, true);
        if (lexeme == "{") {
            place.nInsertAt = lexer.Position() - 1;
            return place;
        }
        if (!StartsWithIgnoringCase(lexeme, kReferencePrefix)) continue;
        const size_t nEnd = lexer.Position();  // at the line end
        const size_t nStart = nEnd - lexeme.size() - (nEnd > 0 && text[nEnd - 1] == '\r' ? 1 : 0);
        place.nLineStart = nStart;
        place.nLineEnd = nEnd < text.size() ? nEnd + 1 : nEnd;
    }
}

}  // namespace

std::string WithRegisterReference(std::string_view text, uint32_t nProblem, std::optional<uint32_t> number) {
    CProblemLexer lexer(text);
    SkipEncodingMark(lexer, text);
    bool bFound = false;
    TReferencePlace found;
    for (std::string lexeme; !(lexeme = lexer.Next(false)).empty();) {
        const size_t nAfterNumber = lexer.Position();
        const TReferencePlace place = FindReferencePlace(text, lexer);
        if (ToNumber(lexeme) == nProblem) {
            found = place;
            bFound = true;
        }
        lexer.Rewind(nAfterNumber);
        ReadRecord(lexeme, lexer, {});
    }
    if (!bFound) throw ChessException("Problem " + std::to_string(nProblem) + " not found");
    const std::string line = number ? std::string(kReferencePrefix) + std::to_string(*number) + "\n" : "";
    std::string result(text);
    if (found.nLineStart != std::string_view::npos)
        result.replace(found.nLineStart, found.nLineEnd - found.nLineStart, line);
    else
        result.insert(found.nInsertAt, line);
    return result;
}

}  // namespace moremate
