#include "http_connect.h"

#include <curl/curl.h>

namespace moremate {

HTTPConnect::HTTPConnect() {
    static const CURLcode s_global = curl_global_init(CURL_GLOBAL_DEFAULT);
    if (s_global == CURLE_OK) m_pCurl = curl_easy_init();
}

HTTPConnect::~HTTPConnect() {
    if (m_pCurl != nullptr) curl_easy_cleanup(m_pCurl);
}

}  // namespace moremate
