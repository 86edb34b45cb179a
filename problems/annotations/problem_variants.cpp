#include "problem_variants.h"

#include "core/chess_exception.h"
#include "problems/format/problem_moves.h"

namespace moremate {
namespace {

constexpr std::string_view kNameEnd = ": ";

}  // namespace

std::string PredefinedVariantName(int number) {
    return "{Variant" + std::to_string(number) + "}";
}

std::string VariantLine(const TChessboard& start, const std::string& name, const std::vector<TMove>& moves) {
    return name + std::string(kNameEnd) + MoveSequenceText(start, moves);
}

TVariant ParseVariantLine(const std::string& line, const TChessboard& start) {
    // Editors may drop the blank after the colon of a variant without moves.
    const std::string text = line.ends_with(':') ? line + ' ' : line;
    const size_t nameEnd = text.rfind(kNameEnd);
    if (nameEnd == std::string::npos || nameEnd == 0) throw ChessException("An error occurred.");
    TVariant variant{text.substr(0, nameEnd), {}};
    variant.vMoves = ReadMoveSequence(text.substr(nameEnd + kNameEnd.size()), start, "Move ",
                                      " in the stored variant is invalid");
    if (variant.vMoves.size() > kMaxVariantMoves)
        throw ChessException("The stored variant is too long: " + std::to_string(variant.vMoves.size()) +
                             " moves");
    return variant;
}

TVariantReading ReadVariants(const ProblemEntry& entry) {
    TVariantReading reading;
    for (const std::string& line : entry.m_annotations.vsVariantLines) {
        try {
            TVariant variant = ParseVariantLine(line, entry.m_position.board);
            reading.variants[variant.sName] = std::move(variant.vMoves);
        } catch (const ChessException& e) {
            reading.vsMessages.push_back(e.what());
        }
    }
    return reading;
}

void WriteVariants(ProblemEntry& entry, const TVariants& variants) {
    std::vector<std::string>& lines = entry.m_annotations.vsVariantLines;
    lines.clear();
    for (const auto& [name, moves] : variants)
        lines.push_back(VariantLine(entry.m_position.board, name, moves));
}

}  // namespace moremate
