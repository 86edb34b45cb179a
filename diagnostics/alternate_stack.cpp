#include "alternate_stack.h"

#include <signal.h>
#include <sys/mman.h>

namespace moremate::diagnostics {

namespace {

// The report (libunwind's walk, the log's formatting) runs on it.
constexpr size_t kStackSize = 256 * 1024;

struct TThreadStack {
    stack_t own{};
    stack_t previous{};  // put back at the thread's end: a sanitizer's runtime frees its own
};

bool SetUpStack(TThreadStack& stack) {
    void* memory = mmap(nullptr, kStackSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) return false;
    stack.own.ss_sp = memory;
    stack.own.ss_size = kStackSize;
    if (sigaltstack(&stack.own, &stack.previous) == 0) return true;
    munmap(memory, kStackSize);
    return false;
}

void* NewThreadStack() {
    auto* stack = new TThreadStack;
    if (SetUpStack(*stack)) return stack;
    delete stack;
    return nullptr;
}

void FreeThreadStack(void* setup) {
    if (!setup) return;
    auto* stack = static_cast<TThreadStack*>(setup);
    sigaltstack(&stack->previous, nullptr);
    munmap(stack->own.ss_sp, kStackSize);
    delete stack;
}

}  // namespace

void InstallAlternateStack() {
    // The main thread's lives as long as the process.
    static TThreadStack s_mainStack;
    SetUpStack(s_mainStack);
}

const TThreadHooks kAlternateStackHooks{NewThreadStack, FreeThreadStack};

}  // namespace moremate::diagnostics
