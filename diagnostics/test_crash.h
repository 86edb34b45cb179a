// Crashes on purpose, one of each kind the crash handler catches, for users and tests to see the
// handler at work (the command "crash-test", the desktop program's menu item).
#pragma once

#include <array>
#include <optional>
#include <string>

namespace moremate::diagnostics {

enum class TestCrash { Segv, Fpe, Abort, Throw, Stack };

// The kinds' names, in the order of TestCrash.
inline constexpr std::array<const char*, 5> kTestCrashKinds{"segv", "fpe", "abort", "throw", "stack"};

inline constexpr const char* kTestCrashNames = "segv, fpe, abort, throw or stack";

std::optional<TestCrash> ParseTestCrash(const std::string& name);

// Does not return: the faults are real ones (a write to address 0 and a division by zero in
// machine code, a recursion without end on the main thread), the exception is thrown in a thread
// of its own so that nothing catches it.
[[noreturn]] void ProvokeCrash(TestCrash kind);

}  // namespace moremate::diagnostics
