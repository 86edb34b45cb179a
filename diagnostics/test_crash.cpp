#include "test_crash.h"

#include <cstdlib>
#include <stdexcept>
#include <thread>

#include "core/thread_start.h"

namespace moremate::diagnostics {

namespace {

volatile bool g_bEndRecursion = false;

// Machine code rather than C++: the compiler (and its sanitizers) must not see undefined
// behaviour here and remove or intercept the fault.
[[noreturn]] void WriteToNull() {
    asm volatile("movl $1, (%0)" : : "r"(0L) : "memory");
    std::abort();
}

[[noreturn]] void DivideByZero() {
    unsigned quotient = 1, remainder = 0;
    const unsigned zero = 0;
    asm volatile("divl %2" : "+a"(quotient), "+d"(remainder) : "r"(zero));
    std::abort();
}

[[gnu::noinline]] unsigned Recurse(unsigned depth) {
    volatile char frame[1024];
    frame[depth % sizeof frame] = static_cast<char>(depth);
    if (g_bEndRecursion) return depth;
    return Recurse(depth + 1) + static_cast<unsigned>(frame[depth % sizeof frame]);
}

[[noreturn]] void ThrowInThread() {
    std::thread thrower =
        StartThread([] { throw std::runtime_error("crash test: an exception nobody catches"); });
    thrower.join();
    std::abort();
}

}  // namespace

std::optional<TestCrash> ParseTestCrash(const std::string& name) {
    for (size_t i = 0; i < kTestCrashKinds.size(); ++i)
        if (name == kTestCrashKinds[i]) return static_cast<TestCrash>(i);
    return std::nullopt;
}

void ProvokeCrash(TestCrash kind) {
    switch (kind) {
        case TestCrash::Segv:
            WriteToNull();
        case TestCrash::Fpe:
            DivideByZero();
        case TestCrash::Throw:
            ThrowInThread();
        case TestCrash::Stack:
            Recurse(0);
            break;
        case TestCrash::Abort:
            break;
    }
    std::abort();
}

}  // namespace moremate::diagnostics
