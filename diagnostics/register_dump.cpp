#include "register_dump.h"

#include <cstdint>

namespace moremate::diagnostics {

namespace {

struct TSegments {
    uint32_t cs, ds, es, fs, gs, ss;
};

// DS and ES are not saved in a signal context; in 64-bit mode they hold the same value for the
// whole process, so the handler's own are the faulting thread's. A context from getcontext(3)
// keeps no segment registers at all: the current ones stand in for them.
TSegments SegmentsOf(const mcontext_t& machine) {
    TSegments s{};
    asm("mov %%ds, %k0" : "=r"(s.ds));
    asm("mov %%es, %k0" : "=r"(s.es));
    const auto packed = static_cast<uint64_t>(machine.gregs[REG_CSGSFS]);
    if (packed == 0) {
        asm("mov %%cs, %k0" : "=r"(s.cs));
        asm("mov %%fs, %k0" : "=r"(s.fs));
        asm("mov %%gs, %k0" : "=r"(s.gs));
        asm("mov %%ss, %k0" : "=r"(s.ss));
        return s;
    }
    s.cs = packed & 0xFFFF;
    s.gs = (packed >> 16) & 0xFFFF;
    s.fs = (packed >> 32) & 0xFFFF;
    s.ss = (packed >> 48) & 0xFFFF;
    return s;
}

void AppendRegister(CLogBuffer& log, const char* name, uint64_t value, const char* after) {
    log.Text(name).Text(": 0x").Hex(value, 8).Text(after);
}

void AppendThree(CLogBuffer& log, const mcontext_t& machine, const char* const names[3], const int regs[3]) {
    for (int i = 0; i < 3; ++i)
        AppendRegister(log, names[i], static_cast<uint64_t>(machine.gregs[regs[i]]), i < 2 ? ", " : "\n");
}

}  // namespace

void AppendRegisterDump(CLogBuffer& log, const ucontext_t& context) {
    const mcontext_t& machine = context.uc_mcontext;
    log.Line("-----------------------------------");
    log.Line("           Register Dump           ");
    log.Line("-----------------------------------");
    log.Line("General Purpose & Control Registers:");
    const char* const line1[] = {"RAX", "RBX", "RCX"};
    const char* const line2[] = {"RDX", "RBP", "RDI"};
    const char* const line3[] = {"RIP", "RSI", "RSP"};
    const int regs1[] = {REG_RAX, REG_RBX, REG_RCX};
    const int regs2[] = {REG_RDX, REG_RBP, REG_RDI};
    const int regs3[] = {REG_RIP, REG_RSI, REG_RSP};
    AppendThree(log, machine, line1, regs1);
    AppendThree(log, machine, line2, regs2);
    AppendThree(log, machine, line3, regs3);
    const TSegments s = SegmentsOf(machine);
    log.Line("Segment Registers:");
    AppendRegister(log, "CS", s.cs, ", ");
    AppendRegister(log, "DS", s.ds, ", ");
    AppendRegister(log, "ES", s.es, "\n");
    AppendRegister(log, "FS", s.fs, ", ");
    AppendRegister(log, "GS", s.gs, ", ");
    AppendRegister(log, "SS", s.ss, "\n");
}

}  // namespace moremate::diagnostics
