#include "diagnostics/crash_handler.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <initializer_list>
#include <regex>
#include <sstream>

#include "core/thread_start.h"
#include "diagnostics/test_crash.h"
#include "engine/state/current_problem.h"
#include "tests/support/temp_folder.h"

namespace moremate::diagnostics {
namespace {

using testing::CTempFolder;

// Crashes in the folder given, as a program with the handler installed does; `inThread`: in a
// thread the program starts.
[[noreturn]] void CrashIn(const std::filesystem::path& folder, TestCrash kind, bool systemHandler,
                          bool inThread = false) {
    if (chdir(folder.c_str()) != 0) _exit(99);
    TOptions options;
    options.m_bUseSystemCrashHandler = systemHandler;
    InstallCrashHandler(options);
    SetCurrentProblem("Loyd 1859", 7);
    SetCurrentChessboard("4k3/8/8/8/8/8/8/R3K3 w - - 0 1", 5);
    if (inThread) StartThread([kind] { ProvokeCrash(kind); }).join();
    ProvokeCrash(kind);
}

std::vector<std::filesystem::path> CrashLogs(const CTempFolder& folder) {
    std::vector<std::filesystem::path> logs;
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path()))
        if (std::regex_match(entry.path().filename().string(),
                             std::regex(R"(crash_log_\d{4}-\d\d-\d\d_\d\d-\d\d-\d\d\.log)")))
            logs.push_back(entry.path());
    return logs;
}

std::vector<std::string> Lines(const std::filesystem::path& file) {
    std::ifstream in(file);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

// Each pattern must match a whole line, the lines in the order of the patterns (later patterns
// after the lines of the earlier ones); returns the first pattern not found.
std::string FirstMissing(const std::vector<std::string>& lines, const std::vector<std::string>& patterns) {
    size_t at = 0;
    for (const std::string& pattern : patterns) {
        const std::regex re(pattern);
        while (at < lines.size() && !std::regex_match(lines[at], re)) ++at;
        if (at == lines.size()) return pattern;
        ++at;
    }
    return "";
}

const std::string kDashes = "-----------------------------------";
const std::string kHex = "0x[0-9A-F]{8,}";

std::vector<std::string> ExpectedLines(const std::string& code, const std::string& frame) {
    std::vector<std::string> lines = {
        "Process File Name: " + std::filesystem::read_symlink("/proc/self/exe").string(),
        "Exception Code: " + code,
        R"(Exception Address: 0x[0-9A-F]{8,} \(.+\+0x[0-9A-F]+\))",
        kDashes,
        "           Register Dump           ",
        kDashes,
        "General Purpose & Control Registers:",
        "RAX: " + kHex + ", RBX: " + kHex + ", RCX: " + kHex,
        "RDX: " + kHex + ", RBP: " + kHex + ", RDI: " + kHex,
        "RIP: " + kHex + ", RSI: " + kHex + ", RSP: " + kHex,
        "Segment Registers:",
        "CS: " + kHex + ", DS: " + kHex + ", ES: " + kHex,
        "FS: " + kHex + ", GS: " + kHex + ", SS: " + kHex,
        kDashes,
        "           Extended Info           ",
        kDashes,
    };
    for (const char* item : {"g_bIsCurrentProblemRunningOrFinalizing",
                             "g_bRegressionTestsPending",
                             "g_bRegressionsTestsProcPending",
                             "AnimateSolutionMove_pending",
                             "g_bEngineThreadProcRunning",
                             "EngineThreadProc_AuxMate_pending",
                             "EngineThreadProc_BlackMoves_pending",
                             "g_bBruteForce",
                             "g_bDrawingCurrentChessboard",
                             "g_bPreparingChessboard",
                             "g_bWMPaintComplete",
                             "g_bWMPaintPending",
                             "g_bFirstWMPaintComplete",
                             "g_bCleaningTempReg",
                             "g_bShowWholeSolution",
                             "g_bVariantAnimationPending",
                             "g_bStopAnimateVariant",
                             "g_bStopPending",
                             "g_bRunning",
                             R"(setRunningProblemsIds\.size\(\))",
                             R"(setProblemsBeingStoppedIds\.size\(\))"})
        lines.push_back(std::string(item) + "=0");
    lines.insert(lines.end(),
                 {"currentProblem=Loyd 1859,7", "currentChessboard=4k3/8/8/8/8/8/8/R3K3 w - - 0 1,5", kDashes,
                  "          Call Stack Trace           ", kDashes,
                  // module(function+0xoffset) [0xaddress], the function demangled
                  R"(\S+\(.*)" + frame + R"(.*\+0x[0-9A-F]+\) \[0x[0-9A-F]+\])"});
    return lines;
}

TEST(CrashHandler, EachCrashLeavesACompleteLogAndEndsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "fast");  // the child crashes in the folder made here
    const struct {
        TestCrash kind;
        std::string code;     // the code line's rest
        std::string message;  // the exception's text in the message on stderr
        std::string frame;    // in a frame of the call stack
    } cases[] = {
        {TestCrash::Segv, R"(0xC0000005 \(Access Violation\))", R"(Access Violation \(SIGSEGV\))",
         "moremate::diagnostics::ProvokeCrash"},
        {TestCrash::Fpe, R"(0xC0000094 \(Integer Divide By Zero\))", R"(Integer Divide By Zero \(SIGFPE\))",
         "moremate::diagnostics::ProvokeCrash"},
        {TestCrash::Abort, R"(0x40000015 \(Unknown Exception\))", R"(Unknown Exception \(SIGABRT\))",
         "abort"},
        {TestCrash::Throw, R"(0xE06D7363 \(C\+\+ Exception \(using throw\)\))",
         "std::runtime_error: crash test: an exception nobody catches", "terminate"},
        {TestCrash::Stack, R"(0xC00000FD \(Stack Overflow\))", R"(Stack Overflow \(SIGSEGV\))",
         "Recurse\\(unsigned int\\)"},
    };
    for (const auto& c : cases)
        for (const bool inThread : {false, true}) {
            SCOPED_TRACE(c.code + (inThread ? " in a thread" : " in the main thread"));
            const CTempFolder folder;
            EXPECT_EXIT(
                CrashIn(folder.Path(), c.kind, false, inThread), ::testing::ExitedWithCode(kExitCrash),
                "Unhandled exception caught: " + c.message +
                    "\n\nDetails written to crash_log_[-_0-9]+\\.log\n\nProgram will now be terminated\\.\n");
            const auto logs = CrashLogs(folder);
            ASSERT_EQ(logs.size(), 1u);
            EXPECT_EQ(FirstMissing(Lines(logs[0]), ExpectedLines(c.code, c.frame)), "");
        }
}

// With a dialog program the crashed process becomes that program, given the message.
TEST(CrashHandler, DialogProgramIsGivenTheMessageOnceTheLogIsWritten) {
    GTEST_FLAG_SET(death_test_style, "fast");  // the child crashes in the folder made here
    const CTempFolder folder;
    const auto dialog = folder.Write(
        "dialog.sh", "#!/bin/sh\n[ \"$1\" = --show-crash ] && printf %s \"$2\" >shown\nexit 3\n");
    std::filesystem::permissions(dialog, std::filesystem::perms::owner_all);
    const auto crash = [&] {
        if (chdir(folder.Path().c_str()) != 0) _exit(99);
        InstallCrashHandler(TOptions{}, dialog);
        ProvokeCrash(TestCrash::Segv);
    };
    EXPECT_EXIT(crash(), ::testing::ExitedWithCode(kExitCrash), "Unhandled exception caught");
    const auto logs = CrashLogs(folder);
    ASSERT_EQ(logs.size(), 1u);
    EXPECT_EQ(folder.Read("shown"),
              "Unhandled exception caught: Access Violation (SIGSEGV)\n\nDetails written to " +
                  logs[0].filename().string() + "\n\nProgram will now be terminated.\n");
}

// The system's handler: the signal's default action, or the sanitizer's report in such a build.
TEST(CrashHandler, SystemHandlerOnLeavesTheCrashToTheSystem) {
    GTEST_FLAG_SET(death_test_style, "fast");  // the child crashes in the folder made here
    const CTempFolder folder;
    const auto notOurs = [](int status) { return !WIFEXITED(status) || WEXITSTATUS(status) != kExitCrash; };
    EXPECT_EXIT(CrashIn(folder.Path(), TestCrash::Segv, true), notOurs, "");
    EXPECT_TRUE(CrashLogs(folder).empty());
}

// The call stacks' library must not take over the unwinding of exceptions from the compiler's own
// (it would run each one about twenty times slower, with a system call per frame). A sanitizer's
// runtime may put its own _Unwind_RaiseException first and call the next one in line: neither may
// be libunwind's.
TEST(CrashHandler, ExceptionsAreNotUnwoundByLibunwind) {
    for (void* handle : {RTLD_DEFAULT, RTLD_NEXT}) {
        void* raise = dlsym(handle, "_Unwind_RaiseException");
        ASSERT_NE(raise, nullptr);
        Dl_info info{};
        ASSERT_NE(dladdr(raise, &info), 0);
        EXPECT_EQ(std::string(info.dli_fname).find("libunwind"), std::string::npos) << info.dli_fname;
    }
}

}  // namespace
}  // namespace moremate::diagnostics
