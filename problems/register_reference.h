// The reference of a problem to a saved temporary register: the number of its register file,
// stored on the line "//@tmpreg=" number.
#pragma once

#include <cstdint>
#include <optional>

#include "problem_entry.h"

namespace moremate {

// The register number; nothing when the problem has no reference or its text is no number.
std::optional<uint32_t> TmpRegNumber(const ProblemEntry& entry);
void SetTmpRegNumber(ProblemEntry& entry, uint32_t number);

}  // namespace moremate
