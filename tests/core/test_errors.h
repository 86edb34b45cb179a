// The message a call fails with, so that tables of cases can list expected failures as text.
#pragma once

#include <exception>
#include <string>

namespace moremate::test {

inline constexpr const char* kNoError = "no error";

// The exception's text, or kNoError when the call returns.
template <typename F>
std::string ErrorOf(F&& f) {
    try {
        f();
    } catch (const std::exception& e) {
        return e.what();
    }
    return kNoError;
}

}  // namespace moremate::test
