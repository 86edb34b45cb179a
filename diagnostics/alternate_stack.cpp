#include "alternate_stack.h"

#include <signal.h>
#include <sys/mman.h>

#include <mutex>
#include <vector>

namespace moremate::diagnostics {

namespace {

// The report (libunwind's walk, the log's formatting) runs on it.
constexpr size_t kStackSize = 256 * 1024;

struct TThreadStack {
    stack_t own{};
    stack_t previous{};  // put back at the thread's end: a sanitizer's runtime frees its own
};

// The stacks of threads that ended, kept for the threads that start next. Mapping and unmapping
// memory take the address space's lock, and a thread that starts or ends would wait there for any
// thread faulting in pages at the time (the register's helper clears 2 MB in one go): a run starts
// and joins its threads for every problem. At most as many stacks as threads ever ran at once.
class CStackPool {
  public:
    static CStackPool& Instance() {
        static CStackPool* const pPool = new CStackPool;  // threads may end after the statics
        return *pPool;
    }
    // Null when the system has no memory.
    void* Take() {
        {
            std::lock_guard lock(m_mutex);
            if (!m_free.empty()) {
                void* memory = m_free.back();
                m_free.pop_back();
                return memory;
            }
        }
        void* memory = mmap(nullptr, kStackSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        return memory == MAP_FAILED ? nullptr : memory;
    }
    void Give(void* memory) {
        std::lock_guard lock(m_mutex);
        m_free.push_back(memory);
    }

  private:
    std::mutex m_mutex;
    std::vector<void*> m_free;
};

bool SetUpStack(TThreadStack& stack) {
    void* memory = CStackPool::Instance().Take();
    if (memory == nullptr) return false;
    stack.own.ss_sp = memory;
    stack.own.ss_size = kStackSize;
    if (sigaltstack(&stack.own, &stack.previous) == 0) return true;
    CStackPool::Instance().Give(memory);
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
    CStackPool::Instance().Give(stack->own.ss_sp);
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
