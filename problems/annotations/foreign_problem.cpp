#include "foreign_problem.h"

#include "award_places.h"
#include "core/chess_exception.h"
#include "core/fen.h"
#include "problems/format/problem_lexer.h"
#include "problems/format/problem_position.h"

namespace moremate {
namespace {

constexpr std::string_view kFenMarker = "%\\fen{";

std::string_view Trimmed(std::string_view text) {
    const size_t first = text.find_first_not_of(" \t\r\n\"");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t\r\n\"") - first + 1);
}

// The text after `marker` up to `end` (or the end of the text); nothing without the marker.
std::optional<std::string> ValueAfter(std::string_view text, std::string_view marker, char end) {
    const size_t at = text.find(marker);
    if (at == std::string_view::npos) return std::nullopt;
    const std::string_view rest = text.substr(at + marker.size());
    return std::string(Trimmed(rest.substr(0, rest.find(end))));
}

std::string ValueOrEmpty(std::string_view text, std::string_view marker, char end) {
    return ValueAfter(text, marker, end).value_or("");
}

// "#3" (or "\#3") gives 3; other stipulations give nothing.
std::optional<int> DirectmateMoves(const std::string& stipulation) {
    const size_t hash = stipulation.find('#');
    if (hash == std::string::npos || (hash > 0 && stipulation[hash - 1] != '\\')) return std::nullopt;
    const std::optional<uint32_t> moves = ToNumber(stipulation.substr(hash + 1));
    if (!moves || *moves == 0 || *moves > 127)
        throw ChessException("Number of moves expected after #: " + stipulation);
    return static_cast<int>(*moves);
}

TForeignProblem ReadDiagramLayout(std::string_view text) {
    TForeignProblem problem;
    const std::string fen = ValueOrEmpty(text, kFenMarker, '}');
    if (!ReadFen(fen, problem.board)) throw ChessException(ImproperFenMessage(fen));
    problem.nMoves = DirectmateMoves(ValueOrEmpty(text, "\\stip{", '}'));
    problem.sAuthor = ValueOrEmpty(text, "\\author{", '}');
    problem.sYear = ValueOrEmpty(text, "\\year{", '}');
    problem.sAward = ValueOrEmpty(text, "\\award{", '}');
    if (const std::optional<std::string> id = ValueAfter(text, "% PDB-ID: P", '\n'); id && ToNumber(*id))
        problem.reference = TDatabaseReference{ProblemDatabase::Pdb, "P" + *id};
    return problem;
}

TForeignProblem ReadKeyValueLayout(std::string_view text) {
    TForeignProblem problem;
    // The figure lists as a record spells them, "W: Ke1, Qa7 B: Kc1", and the record's end.
    const std::string lists =
        ": " + ValueOrEmpty(text, "white: [", ']') + " B: " + ValueOrEmpty(text, "black: [", ']') + " }";
    CProblemLexer lexer(lists);
    ReadPosition("W", lexer, problem.board);
    if (const std::optional<std::string> stipulation = ValueAfter(text, "stipulation: ", '\n'))
        problem.nMoves = DirectmateMoves(*stipulation);
    if (const std::optional<std::string> id = ValueAfter(text, "problemid: ", '\n'); id && !id->empty())
        problem.reference = TDatabaseReference{ProblemDatabase::Yacpdb, *id};
    return problem;
}

std::string JoinedDescription(const TForeignProblem& problem) {
    std::string description;
    const std::string reference = problem.reference ? DescriptionReference(*problem.reference) : "";
    for (const std::string& part : {problem.sAuthor, problem.sYear, problem.sAward, reference})
        if (!part.empty()) description += (description.empty() ? "" : ", ") + part;
    return description;
}

}  // namespace

std::optional<TForeignProblem> RecognizeForeignProblem(std::string_view text) {
    if (text.find(kFenMarker) != std::string_view::npos) return ReadDiagramLayout(text);
    if (text.find("white: [") != std::string_view::npos && text.find("black: [") != std::string_view::npos)
        return ReadKeyValueLayout(text);
    return std::nullopt;
}

ProblemEntry ForeignProblemEntry(const TForeignProblem& problem, uint32_t number) {
    ProblemEntry entry;
    entry.m_nNumber = number;
    entry.m_type = problem.nMoves ? ProblemType::Directmate : ProblemType::Position;
    entry.m_nPlies = problem.nMoves ? 2 * *problem.nMoves - 1 : kPositionPlies;
    entry.m_position.board = problem.board;
    entry.m_position.board.movesLeft = entry.m_position.board.movesAtStart =
        static_cast<int16_t>(entry.m_nPlies);
    entry.m_sDescription = JoinedDescription(problem);
    AssignAwardPlace(entry, RecognizeAward(problem.sAward));
    return entry;
}

}  // namespace moremate
