#include "predefined_sort_indications.h"

#include <cctype>

#include "core/chess_exception.h"
#include "core/fen.h"
#include "problems/format/problem_moves.h"

namespace moremate {
namespace {

struct TKnownComposition {
    std::string_view sPlacement;  // FEN placement, White to move
    std::vector<std::string_view> vsSolutions;
};

// Published keys of long moremovers.
const TKnownComposition kKnownCompositions[] = {
    {"2n4k/2KB1ppp/1p3p2/p5Q1/4p1N1/Pbpr4/1Br3PR/1n1q4", {"1. Rh2:h7+"}},  // W. Bone 1876, #20
    {"4b3/8/3p2P1/3p1p2/N1pPkp2/1pP2p2/3K1P2/8", {"1. g6-g7"}},            // G. Popov 2016, #24
    {"8/8/8/8/1k6/1p6/pp1p1Q2/rrbK4", {"1. Qf2-b6+"}},                     // J. Halumbirek 1968, #8
};

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

bool StartsWord(std::string_view text, size_t at) {
    return at == 0 || std::isspace(static_cast<unsigned char>(text[at - 1])) != 0;
}

}  // namespace

std::string WithoutMoveNumbers(std::string_view solution) {
    std::string text;
    for (size_t at = 0; at < solution.size();) {
        size_t end = at;
        if (StartsWord(solution, at))
            while (end < solution.size() && IsDigit(solution[end])) ++end;
        const bool number =
            end > at && end < solution.size() && (solution[end] == '.' || solution[end] == ' ');
        if (!number) {
            text += solution[at++];
            continue;
        }
        while (end < solution.size() && solution[end] == '.') ++end;
        at = end;
    }
    return text;
}

TVariants VariantsFromSolutions(const std::vector<std::string_view>& solutions, const TChessboard& start) {
    TVariants variants;
    int number = 0;
    for (std::string_view solution : solutions) {
        try {
            variants[PredefinedVariantName(++number)] = ReadMoveSequence(WithoutMoveNumbers(solution), start);
        } catch (const ChessException&) {
            throw ChessException("Error in predefined sort indications.");
        }
    }
    return variants;
}

std::vector<std::string_view> PredefinedSolutions(const TChessboard& position) {
    const std::string placement = WriteFenPlacement(position);
    for (const TKnownComposition& composition : kKnownCompositions)
        if (composition.sPlacement == placement) return composition.vsSolutions;
    return {};
}

size_t AddPredefinedVariants(ProblemEntry& entry, const TUserQuestions& questions) {
    const TChessboard& start = entry.m_position.board;
    TVariants predefined;
    try {
        predefined = VariantsFromSolutions(PredefinedSolutions(start), start);
    } catch (const ChessException& e) {
        if (questions.pReporter != nullptr)
            questions.pReporter->Report(ReportTitle(ReportKind::Error, questions.nLanguage), e.what());
        return 0;
    }
    if (predefined.empty()) return 0;
    const size_t offered = predefined.size();
    TVariants variants = ReadVariants(entry).variants;
    variants.merge(predefined);  // variants of the same name stay as the user stored them
    WriteVariants(entry, variants);
    return offered - predefined.size();
}

}  // namespace moremate
