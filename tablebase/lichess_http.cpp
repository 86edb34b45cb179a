#include "lichess_http.h"

#include <curl/curl.h>

#include <memory>

namespace moremate {
namespace {

std::size_t AppendChunk(char* data, std::size_t size, std::size_t count, void* user) {
    auto& body = *static_cast<std::string*>(user);
    const std::size_t bytes = size * count;
    if (body.size() + bytes > kMaxAnswerBytes) return 0;  // curl then fails the transfer
    body.append(data, bytes);
    return bytes;
}

// True when no connection was made, as opposed to a failure of the transfer on one.
bool ConnectionFailed(CURL* curl, CURLcode code) {
    if (code == CURLE_COULDNT_CONNECT || code == CURLE_COULDNT_RESOLVE_HOST ||
        code == CURLE_COULDNT_RESOLVE_PROXY)
        return true;
    curl_off_t connectMicroseconds = 0;
    curl_easy_getinfo(curl, CURLINFO_CONNECT_TIME_T, &connectMicroseconds);
    return code == CURLE_OPERATION_TIMEDOUT && connectMicroseconds == 0;
}

int AbortRequested(void* abort, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
    return static_cast<const std::atomic<bool>*>(abort)->load() ? 1 : 0;
}

void SetAbort(CURL* curl, const std::atomic<bool>* abort) {
    if (abort == nullptr) return;
    curl_easy_setopt(curl, CURLOPT_NOPROGRESS, 0L);
    curl_easy_setopt(curl, CURLOPT_XFERINFOFUNCTION, AbortRequested);
    curl_easy_setopt(curl, CURLOPT_XFERINFODATA, const_cast<std::atomic<bool>*>(abort));
}

void SetRequest(CURL* curl, const std::string& url, long timeoutMs, std::string& body) {
    curl_easy_reset(curl);
    curl_easy_setopt(curl, CURLOPT_URL, url.c_str());
    curl_easy_setopt(curl, CURLOPT_HTTPGET, 1L);
    curl_easy_setopt(curl, CURLOPT_USERAGENT, "InetURL:/1.0");
    curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT_MS, timeoutMs);
    curl_easy_setopt(curl, CURLOPT_TIMEOUT_MS, timeoutMs);
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    // An aborted transfer does not wait for the name resolution still under way: a problem's end
    // stops its look-ups and waits for them.
    curl_easy_setopt(curl, CURLOPT_QUICK_EXIT, 1L);
    curl_easy_setopt(curl, CURLOPT_FAILONERROR, 1L);
    curl_easy_setopt(curl, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(curl, CURLOPT_MAXREDIRS, 3L);
    curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(curl, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(curl, CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(kMaxAnswerBytes));
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, AppendChunk);
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, &body);
}

std::string EscapedFen(CURL* curl, const std::string& fen) {
    const std::unique_ptr<char, decltype(&curl_free)> escaped(
        curl_easy_escape(curl, fen.c_str(), static_cast<int>(fen.size())), curl_free);
    return escaped ? std::string(escaped.get()) : std::string();
}

}  // namespace

CLiChessHTTP::CLiChessHTTP(std::string baseURL, int timeoutMs)
    : m_sBaseURL(std::move(baseURL)), m_nTimeoutMs(timeoutMs), m_bOffline(m_connect.Handle() == nullptr) {
    if (!m_sBaseURL.empty() && m_sBaseURL.back() != '/') m_sBaseURL += '/';
}

std::optional<std::string> CLiChessHTTP::Fail(const char* error) {
    m_sLastError = error;
    return std::nullopt;
}

std::optional<std::string> CLiChessHTTP::GetHTMLPage(const std::string& target,
                                                     const std::atomic<bool>* abort) {
    if (m_bOffline) return Fail(kNoInternetConnection);
    CURL* curl = m_connect.Handle();
    std::string body;
    SetRequest(curl, m_sBaseURL + target, m_nTimeoutMs, body);
    SetAbort(curl, abort);
    const CURLcode code = curl_easy_perform(curl);
    if (code == CURLE_OK) return body;
    if (code == CURLE_ABORTED_BY_CALLBACK) return Fail("");
    if (ConnectionFailed(curl, code) || code == CURLE_OPERATION_TIMEDOUT) {
        // A service that does not answer in time is as good as none: it is not asked again.
        m_bOffline = true;
        if (ConnectionFailed(curl, code)) return Fail(kNoInternetConnection);
    }
    return Fail(kGetHTMLPageFailed);
}

std::optional<std::string> CLiChessHTTP::Query(const std::string& fen, const std::atomic<bool>* abort) {
    if (m_bOffline) return Fail(kNoInternetConnection);
    return GetHTMLPage("standard?fen=" + EscapedFen(m_connect.Handle(), fen), abort);
}

}  // namespace moremate
