// The progress line on stderr while a problem takes longer than a second: nodes, nodes per
// second and how full the register is. Only when stderr is a terminal.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>

namespace moremate::cli {

class CProgressLine {
  public:
    // `registerFill` answers the register's fill in percent.
    CProgressLine(const std::atomic<uint64_t>& nodes, std::function<int()> registerFill);
    ~CProgressLine();

  private:
    void Run();

    const std::atomic<uint64_t>& m_nodes;
    std::function<int()> m_registerFill;
    std::mutex m_mutex;
    std::condition_variable m_cv;
    bool m_bDone = false;
    bool m_bPrinted = false;
    std::thread m_thread;
};

}  // namespace moremate::cli
