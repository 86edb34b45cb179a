// Pinning a register to a problem, or unpinning it, as an edit of the collection's text: only
// the record's "//@tmpreg=" line changes and every other byte stays as it was, so that pinning
// and unpinning give back the very file the user wrote, comments and layout included.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace moremate {

// The text with the last record of `nProblem` referring to register `number`, or to none. A
// new reference line goes right before the record's "{". Throws ChessException "Problem N not
// found" when no record has that number, or the message of a syntax fault in the text.
std::string WithRegisterReference(std::string_view text, uint32_t nProblem, std::optional<uint32_t> number);

}  // namespace moremate
