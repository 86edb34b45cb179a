// What every command may use, apart from the command-line parser: the exit statuses, the settings
// read at start-up and where reports go. The helpers that only need these include this header
// rather than commands.h, which brings in CLI11 (costly to compile in every file).
#pragma once

#include "settings/options.h"
#include "settings/reporter.h"

namespace moremate::cli {

// Exit statuses shared by all commands.
inline constexpr int kExitOk = 0;
inline constexpr int kExitMismatch = 1;
inline constexpr int kExitBadInput = 2;

// The settings read at start-up and where reports go.
struct TProgramContext {
    TOptions options;
    CReporter& reporter;
    CReporter& questions;  // the reporter, with questions asked on a terminal only (else "no")
};

}  // namespace moremate::cli
