// HTTPConnect: one libcurl handle kept for all requests of a client, so that its connection to the
// service stays open between queries. The handle is made at the first request, which also loads
// libcurl when no request of the program has done so yet: on a thread of its own, which the
// request waits for unless it is aborted meanwhile. Mapping libcurl and the thirty libraries it
// brings takes some 10 ms that nothing can interrupt, and a problem solved meanwhile need not wait
// for its tablebase look-up; the load goes on and is waited for when the client is destroyed
// (before the program's end, whose clean-up of the libraries must not run beside it).
#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "curl_library.h"

namespace moremate {

class HTTPConnect {
  public:
    HTTPConnect() = default;
    ~HTTPConnect();
    HTTPConnect(const HTTPConnect&) = delete;
    HTTPConnect& operator=(const HTTPConnect&) = delete;

    // Waits until libcurl is loaded or found missing, starting the load on the first call; false
    // when `abort` (may be null) was set first.
    bool AwaitLibrary(const std::atomic<bool>* abort);
    // Made on the first call after AwaitLibrary; null when libcurl could not be loaded or gave no
    // handle (and then again at every call).
    CURL* Handle();
    // The library of the handle: only while Handle() has given one.
    const TCurlLibrary& Curl() const { return *m_pLibrary; }

  private:
    const TCurlLibrary* m_pLibrary = nullptr;
    CURL* m_pCurl = nullptr;
    bool m_bTried = false;
    std::mutex m_mutex;
    std::condition_variable m_loaded;
    bool m_bLoaded = false;  // guarded by m_mutex
    std::thread m_loader;
};

}  // namespace moremate
