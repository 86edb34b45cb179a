// Award texts of problems taken in from outside ("1st Prize", "2.-3. Preis", "Commendation") and
// the place tags they give: a problem holds at most one of "1st prize", "2nd prize", "3rd prize".
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "problems/format/problem_entry.h"

namespace moremate {

enum class AwardPlace : uint8_t { None, Unplaced, First, Second, Third };

// The place an award text names; Unplaced for another text naming a prize ("Prize", "Preis" or
// "Platz"), None for a text without one.
AwardPlace RecognizeAward(std::string_view awardText);

// "1st prize", "2nd prize", "3rd prize"; empty for the others.
std::string PlaceTag(AwardPlace place);

// Gives the problem the tag of `place` (First to Third) after taking away any other place tag.
void AssignAwardPlace(ProblemEntry& entry, AwardPlace place);

}  // namespace moremate
