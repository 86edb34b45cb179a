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

void* NewThreadStack() {
    void* memory = mmap(nullptr, kStackSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) return nullptr;
    auto* stack = new TThreadStack;
    stack->own.ss_sp = memory;
    stack->own.ss_size = kStackSize;
    if (sigaltstack(&stack->own, &stack->previous) == 0) return stack;
    munmap(memory, kStackSize);
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
    NewThreadStack();
}

const TThreadHooks kAlternateStackHooks{NewThreadStack, FreeThreadStack};

}  // namespace moremate::diagnostics
