#include "progress_line.h"

#include <fmt/core.h>
#include <unistd.h>

namespace moremate::cli {

CProgressLine::CProgressLine() : m_bTerminal(isatty(STDERR_FILENO) != 0) {}

void CProgressLine::Show(const TRunProgress& progress) {
    if (!m_bTerminal) return;
    const double seconds = static_cast<double>(progress.elapsed.count()) / 1000.0;
    const double perSecond = seconds > 0 ? static_cast<double>(progress.nodes) / seconds : 0;
    std::lock_guard lock(m_mutex);
    fmt::print(stderr, "\r{}  {:.0f} s  {:.0f} nodes/s{}{}{}{}\033[K", progress.passStatus, seconds,
               perSecond, progress.threadFigures.empty() ? "" : "  ", progress.threadFigures,
               progress.observed.empty() ? "" : "  ", progress.observed);
    std::fflush(stderr);
    m_bShown = true;
}

void CProgressLine::Say(const std::string& text) {
    std::lock_guard lock(m_mutex);
    ClearLocked();
    fmt::print(stderr, "{}\n", text);
    std::fflush(stderr);
}

void CProgressLine::Clear() {
    std::lock_guard lock(m_mutex);
    ClearLocked();
}

void CProgressLine::ClearLocked() {
    if (m_bShown) fmt::print(stderr, "\r\033[K");
    m_bShown = false;
}

}  // namespace moremate::cli
