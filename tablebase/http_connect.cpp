#include "http_connect.h"

#include <chrono>

#include "core/thread_start.h"

namespace moremate {

bool HTTPConnect::AwaitLibrary(const std::atomic<bool>* abort) {
    const auto aborted = [abort] { return abort != nullptr && abort->load(); };
    std::unique_lock lock(m_mutex);
    if (!m_bLoaded && !m_loader.joinable()) {
        if (aborted()) return false;  // no load that the client's end would wait for
        m_loader = StartThread([this] {
            CurlLibrary();
            const std::lock_guard loaded(m_mutex);
            m_bLoaded = true;
            m_loaded.notify_all();
        });
    }
    // The one who sets `abort` does not know of this wait: it is looked at every millisecond.
    while (!m_bLoaded && !aborted()) {
        if (abort == nullptr)
            m_loaded.wait(lock);
        else
            m_loaded.wait_for(lock, std::chrono::milliseconds(1));
    }
    return m_bLoaded;
}

CURL* HTTPConnect::Handle() {
    if (!m_bTried) {
        m_bTried = true;
        m_pLibrary = CurlLibrary();
        if (m_pLibrary != nullptr) m_pCurl = m_pLibrary->easyInit();
    }
    return m_pCurl;
}

HTTPConnect::~HTTPConnect() {
    if (m_loader.joinable()) m_loader.join();
    if (m_pCurl != nullptr) m_pLibrary->easyCleanup(m_pCurl);
}

}  // namespace moremate
