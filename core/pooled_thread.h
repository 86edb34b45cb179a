// CPooledThread: a task run on one of the program's parked worker threads, as std::thread runs
// one on a new thread. A new thread costs its stack, its signal stack and several system calls, and
// a collection's problems start a few each (a pass's searches, the main lines, the progress tick):
// a worker that waits for its next task saves all of that. A worker is started, through
// StartThread's hooks, only when none is parked; workers live until the program ends, keeping
// what they hold per thread (an allocator's cache, a lock slot) from one task to the next.
#pragma once

#include <functional>
#include <memory>

namespace moremate {

class CPooledThread {
  public:
    CPooledThread() = default;
    explicit CPooledThread(std::function<void()> task);
    CPooledThread(CPooledThread&&) noexcept = default;
    // Waits for the task this handle held, if any, then takes over `other`'s.
    CPooledThread& operator=(CPooledThread&& other);
    // Waits for the task: it never outlives its handle.
    ~CPooledThread();

    bool joinable() const { return m_pTask != nullptr; }
    // True once the task has ended: join then returns at once.
    bool Ended() const;
    // Waits for the end of the task, whose function (with what it captured) is destroyed by then.
    void join();

    struct TTask;

  private:
    std::shared_ptr<TTask> m_pTask;
};

}  // namespace moremate
