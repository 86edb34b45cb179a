// HTTPConnect: one libcurl handle kept for all requests of a client, so that its connection to the
// service stays open between queries. The handle is made at the first request, which also loads
// libcurl when no request of the program has done so yet.
#pragma once

#include "curl_library.h"

namespace moremate {

class HTTPConnect {
  public:
    HTTPConnect() = default;
    ~HTTPConnect();
    HTTPConnect(const HTTPConnect&) = delete;
    HTTPConnect& operator=(const HTTPConnect&) = delete;

    // Made on the first call; null when libcurl could not be loaded or gave no handle (and then
    // again at every call).
    CURL* Handle();
    // The library of the handle: only while Handle() has given one.
    const TCurlLibrary& Curl() const { return *m_pLibrary; }

  private:
    const TCurlLibrary* m_pLibrary = nullptr;
    CURL* m_pCurl = nullptr;
    bool m_bTried = false;
};

}  // namespace moremate
