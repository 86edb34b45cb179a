#include "register_reference.h"

#include <string>

#include "problem_lexer.h"

namespace moremate {

std::optional<uint32_t> TmpRegNumber(const ProblemEntry& entry) {
    const std::optional<std::string>& text = entry.m_annotations.sTmpReg;
    if (!text) return std::nullopt;
    const size_t end = text->find_last_not_of(" \t");
    return ToNumber(WithoutLeadingBlanks(text->substr(0, end == std::string::npos ? 0 : end + 1)));
}

void SetTmpRegNumber(ProblemEntry& entry, uint32_t number) {
    entry.m_annotations.sTmpReg = std::to_string(number);
}

}  // namespace moremate
