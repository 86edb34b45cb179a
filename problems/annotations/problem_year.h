// The year of a problem as its description gives it: a blank, tab, "(" or "/" followed by a
// four-digit number starting with 1 or 2 ("Freie Presse 1968", "(1876)", "09/11/2016").
#pragma once

#include <optional>
#include <string_view>

namespace moremate {

// The first year of the description, if any.
std::optional<int> FindYear(std::string_view description);

}  // namespace moremate
