#include "bulk_paste.h"

#include <charconv>
#include <sstream>

#include "core/chess_exception.h"
#include "core/fen.h"
#include "problems/annotations/award_places.h"
#include "problems/annotations/foreign_problem.h"
#include "problems/format/collection_reader.h"
#include "settings/trim.h"

namespace moremate::ui {
namespace {

std::vector<std::string> Pieces(const std::string& text) {
    std::vector<std::string> pieces(1);
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const std::string_view trimmed = Trim(line);
        if (trimmed.empty() || trimmed == "---" || trimmed.starts_with("\\begin{diagram}"))
            pieces.emplace_back();
        if (!trimmed.empty() && trimmed != "---") pieces.back() += line + "\n";
        if (trimmed.starts_with("\\end{diagram}")) pieces.emplace_back();
    }
    std::erase_if(pieces, [](const std::string& piece) { return piece.empty(); });
    return pieces;
}

// A FEN, optionally followed by "#n": a problem with White to move.
bool ReadFenLine(const std::string& line, std::vector<ProblemEntry>& entries) {
    const size_t hash = line.rfind('#');
    int moves = 2;
    if (hash != std::string::npos) {
        const std::string n(Trim(line.substr(hash + 1)));
        const auto [end, error] = std::from_chars(n.data(), n.data() + n.size(), moves);
        if (error != std::errc{} || end != n.data() + n.size() || moves < 1 ||
            moves > (kPositionPlies - 1) / 2)
            return false;
    }
    TForeignProblem problem;
    if (!ReadFen(std::string(Trim(line.substr(0, hash))), problem.board)) return false;
    problem.nMoves = moves;
    entries.push_back(ForeignProblemEntry(problem, 0));
    return true;
}

bool IsPrized(const ProblemEntry& entry) {
    for (AwardPlace place : {AwardPlace::First, AwardPlace::Second, AwardPlace::Third})
        for (const std::string& tag : entry.m_annotations.vsTags)
            if (tag == PlaceTag(place)) return true;
    return false;
}

// The problems of one piece, each with whether it is prized.
std::vector<std::pair<ProblemEntry, bool>> ReadPiece(const std::string& piece,
                                                     const TUserQuestions& questions) {
    std::vector<std::pair<ProblemEntry, bool>> read;
    if (const std::optional<TForeignProblem> foreign = RecognizeForeignProblem(piece)) {
        const ProblemEntry entry = ForeignProblemEntry(*foreign, 0);
        read.emplace_back(entry, RecognizeAward(foreign->sAward) != AwardPlace::None);
        return read;
    }
    std::vector<ProblemEntry> entries;
    std::istringstream lines(piece);
    bool fens = true;
    for (std::string line; fens && std::getline(lines, line);) fens = ReadFenLine(line, entries);
    if (!fens) {
        entries.clear();
        ReadCollectionText(piece, entries, {questions, {}});
    }
    for (const ProblemEntry& entry : entries) read.emplace_back(entry, IsPrized(entry));
    return read;
}

}  // namespace

TBulkPaste ReadBulkPaste(const std::string& text, int maxMoves, bool prizedOnly,
                         const TUserQuestions& questions) {
    TBulkPaste paste;
    for (const std::string& piece : Pieces(text)) {
        const std::string head(Trim(piece.substr(0, piece.find('\n'))));
        try {
            for (const auto& [entry, prized] : ReadPiece(piece, questions)) {
                if (entry.m_type == ProblemType::Directmate && entry.StipulationMoves() > maxMoves)
                    paste.faults.push_back(head + ": #" + std::to_string(entry.StipulationMoves()) +
                                           " > MaxStipulationForBulkInsert (" + std::to_string(maxMoves) +
                                           ")");
                else if (prized || !prizedOnly)
                    paste.entries.push_back(entry);
            }
        } catch (const std::exception& e) {
            paste.faults.push_back(head + ": " + e.what());
        }
    }
    return paste;
}

}  // namespace moremate::ui
