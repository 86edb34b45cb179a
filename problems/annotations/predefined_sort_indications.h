// Sort indications built into the program for known compositions: their published solutions,
// taken into a problem of the same position as variants "{Variant1}", "{Variant2}", ...
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "problem_variants.h"
#include "problems/format/user_questions.h"

namespace moremate {

// Drops move numbers: a digit run that starts a word and ends at "." (the dots go with it) or a
// blank. "1. Qf2-b6+ Kb4-a3 2. ..." gives "Qf2-b6+ Kb4-a3 ...".
std::string WithoutMoveNumbers(std::string_view solution);

// Variants named "{Variant" number "}" (from 1) of the solutions, played from `start`. Throws
// ChessException "Error in predefined sort indications." when one cannot be read.
TVariants VariantsFromSolutions(const std::vector<std::string_view>& solutions, const TChessboard& start);

// The predefined solutions of the composition that stands in `position`; empty for others.
std::vector<std::string_view> PredefinedSolutions(const TChessboard& position);

// Stores the predefined variants of the entry's position in it; a solution that cannot be read
// is reported ("Error in predefined sort indications.", title "Error") and nothing is stored.
// Returns the number of variants stored.
size_t AddPredefinedVariants(ProblemEntry& entry, const TUserQuestions& questions);

}  // namespace moremate
