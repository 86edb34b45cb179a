// Scripts of regression tests (".vrs"): one command a line with up to two arguments separated by
// blanks; commands and their first argument are case-insensitive.
//   OPEN file                       makes the collection the current one
//   RUNREGTEST options [file]       a regression test; SHORT and WITHMIRROR in the options
//   SETTEMPREGSIZE n%|nGB|nMB       checked, then ignored on purpose
//   VERIFYSHORTMATE options [file]  reports problems mated faster than stated; REMOVE drops them
// Unknown commands are skipped with a warning; a faulty line stops the script.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "core/chess_exception.h"
#include "problems/format/problem_entry.h"
#include "problems/solving/problem_solving.h"
#include "regression_test.h"
#include "settings/options.h"

namespace moremate {

// A faulty script line: "Script line 3: ..." with the line number kept.
class CScriptError : public ChessException {
  public:
    CScriptError(int nLine, const std::string& message)
        : ChessException("Script line " + std::to_string(nLine) + ": " + message), m_nLine(nLine) {}
    int Line() const { return m_nLine; }

  private:
    int m_nLine;
};

struct TScriptEnvironment {
    const TOptions& options;
    TSolveSettings solve;
    TRegressionTestSettings testSettings;  // logs, database, loops and the stop; the script sets the rest
    std::filesystem::path baseFolder;      // relative file names of the script start here
    std::function<void(const std::string&)> output;
};

struct TScriptResult {
    bool bAnyFailed = false;                      // a test failed or a short mate was found
    std::vector<std::filesystem::path> logFiles;  // of the tests run
    std::vector<ProblemEntry> collection;         // the current collection at the end
};

// Runs the text; throws CScriptError on a faulty line.
TScriptResult RunScriptText(std::string_view text, TScriptEnvironment& environment);
// Runs the file, relative names within it taken from its folder. Throws ChessException
// "Error opening file: " when it cannot be read.
TScriptResult RunScriptFile(const std::filesystem::path& file, TScriptEnvironment& environment);

}  // namespace moremate
