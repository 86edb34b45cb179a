// The crash log: header, register dump, extended info and call stack, in that order. Written with
// async-signal-safe means (fixed buffers and write(2)) except where noted in the parts.
#pragma once

#include <ucontext.h>

#include <cstdint>

namespace moremate::diagnostics {

struct TCrash {
    uint32_t code;        // exception code, see exception_codes.h
    ucontext_t* context;  // registers of the faulting thread
    bool signalFrame;     // the context is the one a signal handler received
};

void WriteCrashLog(int fd, const char* processFileName, TCrash& crash);

}  // namespace moremate::diagnostics
