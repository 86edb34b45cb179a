#include "http_connect.h"

namespace moremate {

CURL* HTTPConnect::Handle() {
    if (!m_bTried) {
        m_bTried = true;
        m_pLibrary = CurlLibrary();
        if (m_pLibrary != nullptr) m_pCurl = m_pLibrary->easyInit();
    }
    return m_pCurl;
}

HTTPConnect::~HTTPConnect() {
    if (m_pCurl != nullptr) m_pLibrary->easyCleanup(m_pCurl);
}

}  // namespace moremate
