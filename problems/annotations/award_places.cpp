#include "award_places.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "problem_tags.h"

namespace moremate {
namespace {

struct TPlaceForms {
    AwardPlace place;
    std::array<std::string_view, 8> forms;
};

// Compared in this order, so that "1st-2nd Prize" is a first place and not a second.
constexpr TPlaceForms kPlaceForms[] = {
    {AwardPlace::First,
     {"1st Prize", "1st Place", "1st-2nd Place", "1st-2nd Prize", "1st-3rd Prize", "1. Preis", "1. Platz",
      "1.-2. Preis"}},
    {AwardPlace::Second,
     {"2nd Prize", "2nd Place", "2nd-3rd Place", "2nd-3rd Prize", "2nd-4th Prize", "2. Preis", "2. Platz",
      "2.-3. Preis"}},
    {AwardPlace::Third,
     {"3rd Prize", "3rd Place", "3rd-4th Place", "3rd-4th Prize", "3rd-5th Prize", "3. Preis", "3. Platz",
      "3.-4. Preis"}},
};

constexpr std::string_view kPrizeWords[] = {"Prize", "Preis", "Platz"};

bool Contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

// `form` begins a word of the text: "12. Preis" holds no "2. Preis".
bool HoldsForm(std::string_view text, std::string_view form) {
    for (size_t at = text.find(form); at != std::string_view::npos; at = text.find(form, at + 1))
        if (at == 0 || std::isalnum(static_cast<unsigned char>(text[at - 1])) == 0) return true;
    return false;
}

}  // namespace

AwardPlace RecognizeAward(std::string_view awardText) {
    for (const TPlaceForms& place : kPlaceForms)
        if (std::ranges::any_of(place.forms,
                                [&](std::string_view form) { return HoldsForm(awardText, form); }))
            return place.place;
    const bool prize =
        std::ranges::any_of(kPrizeWords, [&](std::string_view word) { return Contains(awardText, word); });
    return prize ? AwardPlace::Unplaced : AwardPlace::None;
}

std::string PlaceTag(AwardPlace place) {
    switch (place) {
        case AwardPlace::First:
            return "1st prize";
        case AwardPlace::Second:
            return "2nd prize";
        case AwardPlace::Third:
            return "3rd prize";
        default:
            return {};
    }
}

void AssignAwardPlace(ProblemEntry& entry, AwardPlace place) {
    if (PlaceTag(place).empty()) return;
    for (const TPlaceForms& other : kPlaceForms) RemoveTag(entry, PlaceTag(other.place));
    AddTag(entry, PlaceTag(place));
}

}  // namespace moremate
