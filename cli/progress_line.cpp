#include "progress_line.h"

#include <fmt/core.h>
#include <unistd.h>

#include <chrono>

namespace moremate::cli {

CProgressLine::CProgressLine(const std::atomic<uint64_t>& nodes, std::function<int()> registerFill)
    : m_nodes(nodes), m_registerFill(std::move(registerFill)) {
    if (isatty(STDERR_FILENO)) m_thread = std::thread([this] { Run(); });
}

CProgressLine::~CProgressLine() {
    {
        std::lock_guard lock(m_mutex);
        m_bDone = true;
    }
    m_cv.notify_all();
    if (m_thread.joinable()) m_thread.join();
    if (m_bPrinted) fmt::print(stderr, "\r\033[K");
}

void CProgressLine::Run() {
    const auto start = std::chrono::steady_clock::now();
    std::unique_lock lock(m_mutex);
    while (!m_cv.wait_for(lock, std::chrono::seconds(1), [this] { return m_bDone; })) {
        const double seconds =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        const uint64_t nodes = m_nodes.load(std::memory_order_relaxed);
        fmt::print(stderr, "\r{:.0f} s  {} nodes  {:.0f} nodes/s  register {}%\033[K", seconds, nodes,
                   static_cast<double>(nodes) / seconds, m_registerFill());
        m_bPrinted = true;
    }
}

}  // namespace moremate::cli
