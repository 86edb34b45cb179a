#include "progress_line.h"

#include <unistd.h>

#include <cstdio>

namespace moremate {

CGeneratorProgress::CGeneratorProgress(bool bEnabled) : m_bEnabled(bEnabled && isatty(STDERR_FILENO)) {}

CGeneratorProgress::~CGeneratorProgress() {
    if (m_bShown) std::fputs("\r\033[K", stderr);
}

void CGeneratorProgress::Show(const std::string& text, bool force) {
    if (!m_bEnabled) return;
    std::lock_guard lock(m_lock);
    const auto now = std::chrono::steady_clock::now();
    if (!force && now - m_last < std::chrono::milliseconds(250)) return;
    m_last = now;
    m_bShown = true;
    std::fprintf(stderr, "\r\033[K%s", text.c_str());
    std::fflush(stderr);
}

}  // namespace moremate
