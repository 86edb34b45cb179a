// The named choices of a run's options ("auto", "off", ...), read from their texts.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

namespace moremate {

// Sets `choice` to the value named `text`; false, leaving it as it was, for any other text.
template <typename T>
bool ReadChoice(const std::string& text, std::initializer_list<std::pair<std::string_view, T>> names,
                T& choice) {
    for (const auto& [name, value] : names) {
        if (text != name) continue;
        choice = value;
        return true;
    }
    return false;
}

}  // namespace moremate
