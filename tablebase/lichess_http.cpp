#include "lichess_http.h"

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
bool ConnectionFailed(const TCurlLibrary& lib, CURL* curl, CURLcode code) {
    if (code == CURLE_COULDNT_CONNECT || code == CURLE_COULDNT_RESOLVE_HOST ||
        code == CURLE_COULDNT_RESOLVE_PROXY)
        return true;
    curl_off_t connectMicroseconds = 0;
    lib.easyGetinfo(curl, CURLINFO_CONNECT_TIME_T, &connectMicroseconds);
    return code == CURLE_OPERATION_TIMEDOUT && connectMicroseconds == 0;
}

int AbortRequested(void* abort, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
    return static_cast<const std::atomic<bool>*>(abort)->load() ? 1 : 0;
}

void SetAbort(const TCurlLibrary& lib, CURL* curl, const std::atomic<bool>* abort) {
    if (abort == nullptr) return;
    lib.easySetopt(curl, CURLOPT_NOPROGRESS, 0L);
    lib.easySetopt(curl, CURLOPT_XFERINFOFUNCTION, AbortRequested);
    lib.easySetopt(curl, CURLOPT_XFERINFODATA, const_cast<std::atomic<bool>*>(abort));
}

void SetRequest(const TCurlLibrary& lib, CURL* curl, const std::string& url, long timeoutMs,
                std::string& body) {
    lib.easyReset(curl);
    lib.easySetopt(curl, CURLOPT_URL, url.c_str());
    lib.easySetopt(curl, CURLOPT_HTTPGET, 1L);
    lib.easySetopt(curl, CURLOPT_USERAGENT, "InetURL:/1.0");
    lib.easySetopt(curl, CURLOPT_CONNECTTIMEOUT_MS, timeoutMs);
    lib.easySetopt(curl, CURLOPT_TIMEOUT_MS, timeoutMs);
    lib.easySetopt(curl, CURLOPT_NOSIGNAL, 1L);
    // An aborted transfer does not wait for the name resolution still under way: a problem's end
    // stops its look-ups and waits for them.
    lib.easySetopt(curl, CURLOPT_QUICK_EXIT, 1L);
    lib.easySetopt(curl, CURLOPT_FAILONERROR, 1L);
    lib.easySetopt(curl, CURLOPT_FOLLOWLOCATION, 1L);
    lib.easySetopt(curl, CURLOPT_MAXREDIRS, 3L);
    lib.easySetopt(curl, CURLOPT_PROTOCOLS_STR, "http,https");
    lib.easySetopt(curl, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
    lib.easySetopt(curl, CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(kMaxAnswerBytes));
    lib.easySetopt(curl, CURLOPT_WRITEFUNCTION, AppendChunk);
    lib.easySetopt(curl, CURLOPT_WRITEDATA, &body);
}

std::string EscapedFen(const TCurlLibrary& lib, CURL* curl, const std::string& fen) {
    const std::unique_ptr<char, decltype(&curl_free)> escaped(
        lib.easyEscape(curl, fen.c_str(), static_cast<int>(fen.size())), lib.freeText);
    return escaped ? std::string(escaped.get()) : std::string();
}

}  // namespace

CLiChessHTTP::CLiChessHTTP(std::string baseURL, int timeoutMs)
    : m_sBaseURL(std::move(baseURL)), m_nTimeoutMs(timeoutMs) {
    if (!m_sBaseURL.empty() && m_sBaseURL.back() != '/') m_sBaseURL += '/';
}

std::optional<std::string> CLiChessHTTP::Fail(const char* error) {
    m_sLastError = error;
    return std::nullopt;
}

CURL* CLiChessHTTP::Connection(const std::atomic<bool>* abort) {
    if (m_bOffline || !m_connect.AwaitLibrary(abort)) return nullptr;
    CURL* curl = m_connect.Handle();
    m_bOffline = curl == nullptr;
    return curl;
}

// An abort while libcurl was loading is no failure of the service.
std::optional<std::string> CLiChessHTTP::FailWithoutConnection() {
    return Fail(m_bOffline ? kNoInternetConnection : "");
}

std::optional<std::string> CLiChessHTTP::GetHTMLPage(const std::string& target,
                                                     const std::atomic<bool>* abort) {
    CURL* curl = Connection(abort);
    if (curl == nullptr) return FailWithoutConnection();
    return Get(curl, target, abort);
}

std::optional<std::string> CLiChessHTTP::Get(CURL* curl, const std::string& target,
                                             const std::atomic<bool>* abort) {
    const TCurlLibrary& lib = m_connect.Curl();
    std::string body;
    SetRequest(lib, curl, m_sBaseURL + target, m_nTimeoutMs, body);
    SetAbort(lib, curl, abort);
    const CURLcode code = lib.easyPerform(curl);
    if (code == CURLE_OK) return body;
    if (code == CURLE_ABORTED_BY_CALLBACK) return Fail("");
    const bool connectionFailed = ConnectionFailed(lib, curl, code);
    if (connectionFailed || code == CURLE_OPERATION_TIMEDOUT) {
        // A service that does not answer in time is as good as none: it is not asked again.
        m_bOffline = true;
        if (connectionFailed) return Fail(kNoInternetConnection);
    }
    return Fail(kGetHTMLPageFailed);
}

std::optional<std::string> CLiChessHTTP::Query(const std::string& fen, const std::atomic<bool>* abort) {
    CURL* curl = Connection(abort);
    if (curl == nullptr) return FailWithoutConnection();
    return Get(curl, "standard?fen=" + EscapedFen(m_connect.Curl(), curl, fen), abort);
}

}  // namespace moremate
