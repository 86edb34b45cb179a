// CLiChessHTTP: the tablebase service's HTTP access. One GET per page against the base address of
// the installation, with short connect and transfer timeouts. After a connection that could not be
// made (no network, a refused port, a timeout) it asks nothing more and fails at once, so that a
// machine without network loses at most one timeout.
#pragma once

#include <atomic>
#include <optional>
#include <string>

#include "http_connect.h"

namespace moremate {

inline constexpr const char* kNoInternetConnection = "No internet connection";
inline constexpr const char* kGetHTMLPageFailed = "Exception occurred in GetHTMLPage()";
// Answers of seven pieces run to some ten kilobytes; anything far larger is no answer.
inline constexpr std::size_t kMaxAnswerBytes = 1 << 20;

class CLiChessHTTP {
  public:
    // `baseURL` ends with the folder of the service's pages ("https://host/"); `timeoutMs` bounds
    // the connection and, separately, the whole transfer.
    CLiChessHTTP(std::string baseURL, int timeoutMs);

    // The body of a page below the base address (`target` already URL-encoded), or none with
    // LastError() telling why: kNoInternetConnection or kGetHTMLPageFailed, or empty when `abort`
    // (may be null) was set during the transfer, which then ends at once, or while the first
    // request waited for libcurl to load.
    std::optional<std::string> GetHTMLPage(const std::string& target,
                                           const std::atomic<bool>* abort = nullptr);

    // The body of the service's answer about the position `fen`.
    std::optional<std::string> Query(const std::string& fen, const std::atomic<bool>* abort = nullptr);

    // True once a connection failed or libcurl could not give a handle (the first request loads it).
    bool Offline() const { return m_bOffline; }
    const std::string& LastError() const { return m_sLastError; }

  private:
    std::optional<std::string> Fail(const char* error);
    // The handle of the requests, or null when offline (which no handle makes it) or when `abort`
    // was set while libcurl was loading.
    CURL* Connection(const std::atomic<bool>* abort);
    // The failure of a request that got no handle from Connection().
    std::optional<std::string> FailWithoutConnection();
    // GetHTMLPage on the handle of Connection().
    std::optional<std::string> Get(CURL* curl, const std::string& target, const std::atomic<bool>* abort);

    HTTPConnect m_connect;
    std::string m_sBaseURL;
    long m_nTimeoutMs;
    bool m_bOffline = false;  // no handle, or a connection failed: nothing is asked any more
    std::string m_sLastError;
};

}  // namespace moremate
