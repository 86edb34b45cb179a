#include "curl_library.h"

#include <dlfcn.h>

#include <optional>

namespace moremate {
namespace {

template <class FFunction>
bool Bind(void* library, const char* name, FFunction& function) {
    function = reinterpret_cast<FFunction>(dlsym(library, name));
    return function != nullptr;
}

std::optional<TCurlLibrary> Load() {
    void* library = dlopen(MOREMATE_CURL_SONAME, RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) return std::nullopt;
    TCurlLibrary curl{};
    decltype(&curl_global_init) globalInit = nullptr;
    const bool bound =
        Bind(library, "curl_global_init", globalInit) && Bind(library, "curl_easy_init", curl.easyInit) &&
        Bind(library, "curl_easy_cleanup", curl.easyCleanup) &&
        Bind(library, "curl_easy_reset", curl.easyReset) &&
        Bind(library, "curl_easy_setopt", curl.easySetopt) &&
        Bind(library, "curl_easy_perform", curl.easyPerform) &&
        Bind(library, "curl_easy_getinfo", curl.easyGetinfo) &&
        Bind(library, "curl_easy_escape", curl.easyEscape) && Bind(library, "curl_free", curl.freeText);
    if (!bound || globalInit(CURL_GLOBAL_DEFAULT) != CURLE_OK) return std::nullopt;
    return curl;
}

}  // namespace

const TCurlLibrary* CurlLibrary() {
    static const std::optional<TCurlLibrary> s_library = Load();
    return s_library ? &*s_library : nullptr;
}

}  // namespace moremate
