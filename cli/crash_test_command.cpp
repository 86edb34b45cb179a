#include <fmt/core.h>

#include <string>
#include <vector>

#include "commands.h"
#include "diagnostics/test_crash.h"
#include "settings/program_folder.h"

namespace moremate::cli {
namespace {

int RunCrashTest(const std::string& kind, const TOptions& options) {
    if (!options.m_bAddTestCrashHandlerMenuItem) {
        fmt::print(stderr,
                   "crash-test is switched off: set AddTestCrashHandlerMenuItem=1 in section [chess] of {}\n",
                   OptionsFilePath().string());
        return kExitBadInput;
    }
    diagnostics::ProvokeCrash(*diagnostics::ParseTestCrash(kind));
}

}  // namespace

Runner AddCrashTestCommand(CLI::App& app, TProgramContext& context) {
    auto kind = std::make_shared<std::string>();
    CLI::App* cmd = app.add_subcommand(
        "crash-test", "Crash on purpose to try the crash handler (needs AddTestCrashHandlerMenuItem=1)");
    cmd->add_option("kind", *kind, diagnostics::kTestCrashNames)
        ->required()
        ->check(CLI::IsMember(std::vector<std::string>(diagnostics::kTestCrashKinds.begin(),
                                                       diagnostics::kTestCrashKinds.end())));
    return [kind, &context] { return RunCrashTest(*kind, context.options); };
}

}  // namespace moremate::cli
