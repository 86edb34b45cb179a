// Which loaded module (program or shared library) holds a code address, and where in it.
#pragma once

#include <cstdint>

namespace moremate::diagnostics {

struct TModuleAddress {
    const char* module;  // the file name without its folder; "unknown" outside every module
    uint64_t offset;     // from the module's base address (the address itself when unknown)
};

// Uses dladdr: no allocation, as long as no other thread is loading a library at the time.
TModuleAddress LocateModule(uint64_t address);

}  // namespace moremate::diagnostics
