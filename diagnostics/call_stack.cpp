#include "call_stack.h"

#define UNW_LOCAL_ONLY
#include <cxxabi.h>
#include <libunwind.h>

#include <cstdlib>

#include "module_address.h"

namespace moremate::diagnostics {

namespace {

constexpr int kMaxFrames = 100'000;  // a stack overflow's recursion included
constexpr size_t kNameCapacity = 4096;

// The demangler's output buffer: malloc'ed once, grown by the demangler itself only for a name
// longer than it.
char* g_pDemangled = nullptr;
size_t g_nDemangledSize = 0;

const char* Demangled(const char* mangled) {
    if (g_pDemangled == nullptr) return mangled;
    size_t size = g_nDemangledSize;
    int status = 0;
    char* result = abi::__cxa_demangle(mangled, g_pDemangled, &size, &status);
    if (status != 0 || result == nullptr) return mangled;
    g_pDemangled = result;
    g_nDemangledSize = size > g_nDemangledSize ? size : g_nDemangledSize;
    return result;
}

void AppendFrame(CLogBuffer& log, unw_cursor_t& cursor, uint64_t ip) {
    static char mangled[kNameCapacity];
    const TModuleAddress where = LocateModule(ip);
    unw_word_t offset = 0;
    log.Text(where.module);
    if (unw_get_proc_name(&cursor, mangled, sizeof mangled, &offset) == 0)
        log.Char('(').Text(Demangled(mangled)).Text("+0x").Hex(offset).Char(')');
    log.Text(" [0x").Hex(ip).Text("]\n");
}

void AppendRepeats(CLogBuffer& log, unsigned repeats) {
    if (repeats > 0) log.Text("    ... the frame above ").Unsigned(repeats).Text(" more times\n");
}

}  // namespace

void PrepareCallStack() {
    if (g_pDemangled != nullptr) return;
    g_nDemangledSize = 64 * 1024;
    g_pDemangled = static_cast<char*>(std::malloc(g_nDemangledSize));
}

void AppendCallStack(CLogBuffer& log, ucontext_t& context, bool signalFrame) {
    log.Line("-----------------------------------");
    log.Line("          Call Stack Trace           ");
    log.Line("-----------------------------------");
    unw_cursor_t cursor;
    if (unw_init_local2(&cursor, &context, signalFrame ? UNW_INIT_SIGNAL_FRAME : 0) != 0) return;
    // A frame that repeats the one before (a recursion, as in a stack overflow) is counted, not
    // printed again.
    unw_word_t previous = 0;
    unsigned repeats = 0;
    for (int frame = 0; frame < kMaxFrames; ++frame) {
        unw_word_t ip = 0;
        if (unw_get_reg(&cursor, UNW_REG_IP, &ip) != 0 || ip == 0) break;
        if (ip == previous) {
            ++repeats;
        } else {
            AppendRepeats(log, repeats);
            repeats = 0;
            AppendFrame(log, cursor, ip);
        }
        previous = ip;
        if (unw_step(&cursor) <= 0) break;
    }
    AppendRepeats(log, repeats);
}

}  // namespace moremate::diagnostics
