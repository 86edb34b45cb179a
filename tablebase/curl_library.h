// libcurl, loaded when the first transfer needs it rather than with the program: together with the
// thirty libraries it depends on, it cost every start of the program some 8 ms of mapping and
// relocation, which the commands and runs that never ask the online tablebase need not pay.
#pragma once

#include <curl/curl.h>

namespace moremate {

// The functions of libcurl that the tablebase's HTTP access calls.
struct TCurlLibrary {
    decltype(&curl_easy_init) easyInit;
    decltype(&curl_easy_cleanup) easyCleanup;
    decltype(&curl_easy_reset) easyReset;
    decltype(&curl_easy_setopt) easySetopt;
    decltype(&curl_easy_perform) easyPerform;
    decltype(&curl_easy_getinfo) easyGetinfo;
    decltype(&curl_easy_escape) easyEscape;
    decltype(&curl_free) freeText;
};

// The library, loaded and set up (its process-wide initialisation) by the first call, whichever
// thread makes it; null when it cannot be loaded or set up. It stays loaded until the program ends.
// Other threads may be running by then: libcurl's set-up is thread-safe from 7.84 on (its
// "threadsafe" feature; Debian 12 has 7.88).
const TCurlLibrary* CurlLibrary();

}  // namespace moremate
