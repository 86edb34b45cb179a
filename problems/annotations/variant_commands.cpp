#include "variant_commands.h"

#include "core/chess_exception.h"
#include "problem_variants.h"

namespace moremate {
namespace {

std::string Quoted(const std::string& name) {
    return '"' + name + '"';
}

bool Refuse(const TUserQuestions& questions, const std::string& text) {
    if (questions.pReporter != nullptr)
        questions.pReporter->Report(ReportTitle(ReportKind::Error, questions.nLanguage), text);
    return false;
}

bool RefuseAnyOther(const TUserQuestions& questions) {
    return Refuse(questions, "An error occurred.");
}

}  // namespace

bool StoreVariant(ProblemEntry& entry, const std::string& name, const std::vector<TMove>& moves,
                  const TUserQuestions& questions) {
    TVariants variants = ReadVariants(entry).variants;
    if (name.empty()) return RefuseAnyOther(questions);
    const TChessboard& start = entry.m_position.board;
    try {
        // The line must read back as the same moves before it is stored.
        if (ParseVariantLine(VariantLine(start, name, moves), start).vMoves != moves)
            return RefuseAnyOther(questions);
    } catch (const ChessException& e) {
        return Refuse(questions, e.what());
    }
    if (variants.contains(name) &&
        !AskYesNo(questions, "Variant" + Quoted(name) + " already exists. Do you want to overwrite it?\n"))
        return false;
    variants[name] = moves;
    WriteVariants(entry, variants);
    return true;
}

bool RenameVariant(ProblemEntry& entry, const std::string& oldName, const std::string& newName,
                   const TUserQuestions& questions) {
    TVariants variants = ReadVariants(entry).variants;
    if (variants.contains(newName))
        return Refuse(questions, "Cannot rename variant" + Quoted(oldName) + " to " + Quoted(newName) +
                                     " (such variant already exists)");
    const auto found = variants.find(oldName);
    if (found == variants.end() || newName.empty()) return RefuseAnyOther(questions);
    variants[newName] = std::move(found->second);
    variants.erase(oldName);
    WriteVariants(entry, variants);
    return true;
}

bool DeleteVariant(ProblemEntry& entry, const std::string& name, const TUserQuestions& questions) {
    TVariants variants = ReadVariants(entry).variants;
    if (!variants.contains(name)) return RefuseAnyOther(questions);
    if (!AskYesNo(questions, "Do you really want to delete variant" + Quoted(name))) return false;
    variants.erase(name);
    WriteVariants(entry, variants);
    return true;
}

}  // namespace moremate
