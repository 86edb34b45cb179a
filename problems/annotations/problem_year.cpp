#include "problem_year.h"

#include <regex>
#include <string>

namespace moremate {

std::optional<int> FindYear(std::string_view description) {
    // A blank, tab, "(", "/" (or "|") and then four digits, the first a 1 or a 2.
    static const std::regex kYear(R"([\s|\t|\(\/][12][0-9][0-9][0-9])");
    std::match_results<std::string_view::const_iterator> match;
    if (!std::regex_search(description.begin(), description.end(), match, kYear)) return std::nullopt;
    return std::stoi(match.str().substr(1));
}

}  // namespace moremate
