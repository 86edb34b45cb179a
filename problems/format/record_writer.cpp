#include "record_writer.h"

#include "core/fen.h"
#include "problem_moves.h"
#include "problem_options.h"

namespace moremate {
namespace {

std::string HeaderLine(const ProblemEntry& entry) {
    std::string line = std::to_string(entry.m_nNumber);
    switch (entry.m_type) {
        case ProblemType::Directmate:
            line += " #" + std::to_string(entry.StipulationMoves());
            break;
        case ProblemType::Selfmate:
            line += " s#" + std::to_string(entry.StipulationMoves());
            break;
        case ProblemType::Position:
            line += " ";
            break;
    }
    return line + WriteOptions(entry) + "\n";
}

std::string AnnotationLines(const TAnnotationLines& lines) {
    std::string text;
    if (!lines.vsTags.empty()) {
        text += "//#TAGS\n";
        for (const std::string& tag : lines.vsTags) text += "//#" + tag + "\n";
    }
    if (!lines.vsVariantLines.empty()) {
        text += "//!VARIANTS\n";
        for (const std::string& variant : lines.vsVariantLines) text += "//!" + variant + "\n";
        text += "//!ENDVARIANTS\n";
    }
    if (lines.sSortIndications) text += "//@SortIndications: " + *lines.sSortIndications + "\n";
    if (lines.sTmpReg) text += "//@tmpreg=" + *lines.sTmpReg + "\n";
    return text;
}

// Full answers are written as "Answer"; expected sort orders keep their own keyword so that
// they read back as such.
const char* AnswerKeyword(AnswerKind kind) {
    switch (kind) {
        case AnswerKind::ExpectedSort:
            return "ExpectedSortWhiteMoves";
        case AnswerKind::ExpectedSortOnly:
            return "ExpectedSortWhiteMovesOnly";
        default:
            return "Answer";
    }
}

std::string Body(const ProblemEntry& entry) {
    const TChessboard& board = entry.m_position.board;
    std::string text = "{\n";
    if (!entry.m_sDescription.empty()) text += "\tDescription: " + entry.m_sDescription + "\n";
    text += "\tFEN: " + WriteFen(board) + "\n";
    // The moves come before the answer, in the order the reader expects them.
    if (!entry.m_vMoves.empty()) text += "   Moves:    " + MoveSequenceText(board, entry.m_vMoves) + "\n";
    if (!entry.m_vAnswer.empty()) {
        text += '\t';
        text += AnswerKeyword(entry.m_answerKind);
        text += ": " + AnswerText(board, entry.m_vAnswer) + "\n";
    }
    return text + "}\n";
}

}  // namespace

std::string WriteRecord(const ProblemEntry& entry) {
    std::string text = "\n";
    return text + HeaderLine(entry) + AnnotationLines(entry.m_annotations) + Body(entry);
}

std::string WriteCollectionText(const std::vector<ProblemEntry>& entries) {
    std::string text = "UTF-8\n\n";
    for (const ProblemEntry& entry : entries)
        if (entry.m_nNumber != kEmptySlotNumber) text += WriteRecord(entry);
    return text;
}

}  // namespace moremate
