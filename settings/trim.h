// Blanks around a value, in a file or in a dialog field, carry no meaning and are dropped.
#pragma once

#include <string_view>

namespace moremate {

inline std::string_view Trim(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n";
    std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

}  // namespace moremate
