#include "crash_handler.h"

#include <cxxabi.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstring>
#include <ctime>
#include <exception>
#include <string>

#include "alternate_stack.h"
#include "call_stack.h"
#include "crash_log.h"
#include "crash_log_name.h"
#include "exception_codes.h"
#include "log_buffer.h"

namespace moremate::diagnostics {

namespace {

constexpr int kSignals[] = {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT};
// A fault this close to the stack pointer is taken for a stack overflow.
constexpr uint64_t kStackOverflowReach = 64 * 1024;

char g_achProcessFileName[4096] = "unknown";
char g_achDialogProgram[4096] = "";
long g_nUtcOffsetSeconds = 0;
std::atomic<long> g_nReportingThread{0};

long ThisThread() {
    return syscall(SYS_gettid);
}

void ReadProcessFileName() {
    const ssize_t n = readlink("/proc/self/exe", g_achProcessFileName, sizeof g_achProcessFileName - 1);
    if (n > 0) g_achProcessFileName[n] = '\0';
}

void ReadUtcOffset() {
    const time_t now = time(nullptr);
    tm local{};
    if (localtime_r(&now, &local) != nullptr) g_nUtcOffsetSeconds = local.tm_gmtoff;
}

// One report per process: a second thread that crashes meanwhile waits for the first to end the
// process; a crash inside the report itself ends the process at once.
void ClaimReport() {
    long expected = 0;
    const long self = ThisThread();
    if (g_nReportingThread.compare_exchange_strong(expected, self)) return;
    if (expected == self) _exit(kExitCrash);
    for (;;) pause();
}

// Appends what fits of `text`, keeping the terminating zero.
template <size_t N>
void Append(char (&message)[N], const char* text) {
    const size_t used = std::strlen(message);
    std::strncat(message, text, N - 1 - used);
}

// The user's message, on stderr and in the dialog.
template <size_t N>
void ComposeMessage(char (&message)[N], const char* text, const char* logName, bool logWritten) {
    message[0] = '\0';
    Append(message, "Unhandled exception caught: ");
    Append(message, text);
    Append(message, logWritten ? "\n\nDetails written to " : "\n\nThe file ");
    Append(message, logName);
    Append(message, logWritten ? "\n\n" : " could not be created; details written above.\n\n");
    Append(message, "Program will now be terminated.\n");
}

// Replaces the process by the dialog program, when there is one; returns only when that fails.
void ShowDialog(char* message) {
    if (g_achDialogProgram[0] == '\0') return;
    char argument[std::char_traits<char>::length(kShowCrashArgument) + 1];
    std::memcpy(argument, kShowCrashArgument, sizeof argument);
    char* argv[] = {g_achDialogProgram, argument, message, nullptr};
    execv(g_achDialogProgram, argv);
}

void TellUser(const char* text, const char* logName, bool logWritten) {
    char message[2048];
    ComposeMessage(message, text, logName, logWritten);
    CLogBuffer(STDERR_FILENO).Text(message);
    ShowDialog(message);
}

[[noreturn]] void Report(const char* text, TCrash& crash) {
    char name[kCrashLogNameSize];
    CrashLogName(time(nullptr), g_nUtcOffsetSeconds, name);
    const int fd = open(name, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    WriteCrashLog(fd >= 0 ? fd : STDERR_FILENO, g_achProcessFileName, crash);
    if (fd >= 0) close(fd);
    TellUser(text, name, fd >= 0);
    _exit(kExitCrash);
}

bool NearStackPointer(const siginfo_t& info, const ucontext_t& context) {
    const auto address = reinterpret_cast<uint64_t>(info.si_addr);
    const auto sp = static_cast<uint64_t>(context.uc_mcontext.gregs[REG_RSP]);
    return address + kStackOverflowReach >= sp && address <= sp + kStackOverflowReach;
}

void OnSignal(int signal, siginfo_t* info, void* raw) {
    ClaimReport();
    auto* context = static_cast<ucontext_t*>(raw);
    TCrash crash{ExceptionCodeOfSignal(signal, info->si_code, NearStackPointer(*info, *context)), context,
                 true};
    // "Access Violation (SIGSEGV)": the table's name with the signal that brought it.
    char text[96] = {};
    std::strncat(text, ExceptionName(crash.code), 60);
    std::strcat(text, " (");
    std::strcat(text, SignalName(signal));
    std::strcat(text, ")");
    Report(text, crash);
}

// "std::runtime_error: what it says", from the exception being handled, if any.
std::string CurrentExceptionText() {
    const std::exception_ptr current = std::current_exception();
    if (!current) return "std::terminate called without an exception";
    const std::type_info* type = abi::__cxa_current_exception_type();
    int status = 0;
    char* demangled = type ? abi::__cxa_demangle(type->name(), nullptr, nullptr, &status) : nullptr;
    std::string text = demangled ? demangled : "unknown type";
    std::free(demangled);
    try {
        std::rethrow_exception(current);
    } catch (const std::exception& e) {
        text += std::string(": ") + e.what();
    } catch (...) {
    }
    return text;
}

[[noreturn]] void OnTerminate() {
    ClaimReport();
    const std::string text = CurrentExceptionText();
    ucontext_t context;
    getcontext(&context);
    TCrash crash{kCppException, &context, false};
    Report(text.c_str(), crash);
}

}  // namespace

void InstallCrashHandler(const TOptions& options, const std::filesystem::path& dialogProgram) {
    if (options.m_bUseSystemCrashHandler) return;
    g_achDialogProgram[0] = '\0';
    std::strncat(g_achDialogProgram, dialogProgram.c_str(), sizeof g_achDialogProgram - 1);
    ReadProcessFileName();
    ReadUtcOffset();
    PrepareCallStack();
    InstallAlternateStack();
    SetThreadHooks(&kAlternateStackHooks);
    struct sigaction action {};
    action.sa_sigaction = OnSignal;
    // Not deferred: a fault inside the report comes back here and ends the process at once.
    action.sa_flags = SA_SIGINFO | SA_ONSTACK | SA_NODEFER;
    sigemptyset(&action.sa_mask);
    for (int signal : kSignals) sigaction(signal, &action, nullptr);
    std::set_terminate(OnTerminate);
}

}  // namespace moremate::diagnostics
