#include "module_address.h"

#include <dlfcn.h>

namespace moremate::diagnostics {

namespace {

const char* WithoutFolder(const char* path) {
    const char* name = path;
    for (const char* p = path; *p != '\0'; ++p)
        if (*p == '/') name = p + 1;
    return name;
}

}  // namespace

TModuleAddress LocateModule(uint64_t address) {
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(address), &info) == 0 || info.dli_fname == nullptr)
        return {"unknown", address};
    return {WithoutFolder(info.dli_fname), address - reinterpret_cast<uint64_t>(info.dli_fbase)};
}

}  // namespace moremate::diagnostics
