#include "crash_log.h"

#include "call_stack.h"
#include "exception_codes.h"
#include "extended_info.h"
#include "log_buffer.h"
#include "module_address.h"
#include "register_dump.h"

namespace moremate::diagnostics {

namespace {

void AppendHeader(CLogBuffer& log, const char* processFileName, const TCrash& crash) {
    const auto address = static_cast<uint64_t>(crash.context->uc_mcontext.gregs[REG_RIP]);
    const TModuleAddress where = LocateModule(address);
    log.Text("Process File Name: ").Line(processFileName);
    log.Text("Exception Code: 0x").Hex(crash.code, 8).Text(" (").Text(ExceptionName(crash.code)).Line(")");
    log.Text("Exception Address: 0x").Hex(address, 8).Text(" (").Text(where.module).Text("+0x");
    log.Hex(where.offset).Line(")");
}

}  // namespace

void WriteCrashLog(int fd, const char* processFileName, TCrash& crash) {
    CLogBuffer log(fd);
    AppendHeader(log, processFileName, crash);
    AppendRegisterDump(log, *crash.context);
    AppendExtendedInfo(log);
    log.Flush();  // what is known so far is kept even if the walk of the stack fails
    AppendCallStack(log, *crash.context, crash.signalFrame);
}

}  // namespace moremate::diagnostics
