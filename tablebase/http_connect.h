// HTTPConnect: one libcurl handle kept for all requests of a client, so that its connection to the
// service stays open between queries. curl's process-wide set-up is made once, on first use.
#pragma once

typedef void CURL;

namespace moremate {

class HTTPConnect {
  public:
    HTTPConnect();
    ~HTTPConnect();
    HTTPConnect(const HTTPConnect&) = delete;
    HTTPConnect& operator=(const HTTPConnect&) = delete;

    // Null when curl could not give a handle.
    CURL* Handle() const { return m_pCurl; }

  private:
    CURL* m_pCurl = nullptr;
};

}  // namespace moremate
