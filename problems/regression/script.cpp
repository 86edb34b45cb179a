#include "script.h"

#include <fmt/core.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "problems/format/collection_reader.h"
#include "problems/format/problem_lexer.h"
#include "settings/bounded_file.h"

namespace moremate {
namespace {

struct TScriptLine {
    int nLine = 0;
    std::string sCommand;    // upper case
    std::string sArguments;  // everything after the command
    std::string sFirst;      // as written
    std::string sSecond;     // everything after the first argument
};

constexpr std::string_view kBlanks = " \t\r";

std::string_view Trimmed(std::string_view text) {
    const size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) + 1 - first);
}

// Splits off the first word of `text`, leaving the trimmed rest.
std::string NextWord(std::string_view& text) {
    text = Trimmed(text);
    const size_t end = std::min(text.find_first_of(kBlanks), text.size());
    const std::string word(text.substr(0, end));
    text = Trimmed(text.substr(end));
    return word;
}

TScriptLine ParseLine(std::string_view text, int nLine) {
    TScriptLine line;
    line.nLine = nLine;
    line.sCommand = ToUpper(NextWord(text));
    line.sArguments = text;
    line.sFirst = NextWord(text);
    line.sSecond = text;
    return line;
}

// SETTEMPREGSIZE's argument: a whole number with "%", "GB" or "MB".
bool IsRegisterSize(const std::string& text) {
    const std::string upper = ToUpper(text);
    const size_t unit = upper.find_first_not_of("0123456789");
    if (unit == 0 || unit == std::string::npos) return false;
    const std::string suffix = upper.substr(unit);
    return suffix == "%" || suffix == "GB" || suffix == "MB";
}

class CScript {
  public:
    explicit CScript(TScriptEnvironment& environment) : m_env(environment) {}

    void Execute(const TScriptLine& line) {
        if (line.sCommand.empty()) return;
        if (line.sCommand == "OPEN") return Open(line, line.sArguments);
        if (line.sCommand == "RUNREGTEST") return RunRegTest(line);
        if (line.sCommand == "SETTEMPREGSIZE") return CheckRegisterSize(line);
        if (line.sCommand == "VERIFYSHORTMATE") return VerifyShortMate(line);
        Say(fmt::format("Script line {}: unknown command {} skipped\n", line.nLine, line.sCommand));
    }
    TScriptResult& Result() { return m_result; }

  private:
    void Say(const std::string& text) const {
        if (m_env.output) m_env.output(text);
    }

    void Open(const TScriptLine& line, const std::string& name) {
        if (name.empty()) throw CScriptError(line.nLine, line.sCommand + " needs a file name");
        const std::filesystem::path file = m_env.baseFolder / name;
        try {
            ReadCollectionFile(file, m_result.collection, false, TCollectionReading{});
        } catch (const ChessException& e) {
            throw CScriptError(line.nLine, e.what());
        }
        m_collectionFile = file;
    }

    // The optional file of RUNREGTEST and VERIFYSHORTMATE opens that collection first.
    void OpenOptional(const TScriptLine& line) {
        if (!line.sSecond.empty()) Open(line, line.sSecond);
        if (m_collectionFile.empty()) throw CScriptError(line.nLine, "no problem collection is open");
    }

    void RunRegTest(const TScriptLine& line) {
        OpenOptional(line);
        const std::string options = ToUpper(line.sFirst);
        TRegressionTestSettings settings = m_env.testSettings;
        settings.bShort = options.find("SHORT") != std::string::npos;
        settings.bWithMirror = options.find("WITHMIRROR") != std::string::npos;
        const TRegressionTestResult test = RunRegressionTest(m_result.collection, m_collectionFile, settings,
                                                             m_env.solve, m_env.options, m_env.output);
        m_result.logFiles.push_back(test.logFile);
        m_result.bAnyFailed = m_result.bAnyFailed || test.bAnyFailed;
    }

    void CheckRegisterSize(const TScriptLine& line) const {
        if (!IsRegisterSize(line.sFirst))
            throw CScriptError(line.nLine, "SETTEMPREGSIZE needs a size with %, GB or MB: " + line.sFirst);
    }

    // A directmate in n with a mate in n-1 found within the short test's time limit.
    bool HasShortMate(const ProblemEntry& entry) {
        if (entry.m_type != ProblemType::Directmate || entry.StipulationMoves() < 2) return false;
        ProblemEntry shorter = entry;
        shorter.m_nPlies -= 2;
        shorter.m_answerKind = AnswerKind::None;
        shorter.m_nOptions &= ~(kOptAllSolutions | kOptStopOnDual | kOptStopOn3Sol | kOptStopOn4Sol);
        TSolveSettings solve = m_env.solve;
        solve.allSolutions = false;
        solve.stopOn = 0;
        solve.timeLimitSeconds = m_env.options.m_nShortRegTestSeconds;
        const TProblemReport report = SolveProblem(shorter, solve, m_env.options, m_runRegister, nullptr);
        if (report.keys.empty()) return false;
        Say(fmt::format("Problem {} #{}: short mate in {}: {}\n", entry.m_nNumber, entry.StipulationMoves(),
                        shorter.StipulationMoves(), fmt::join(report.keys, ", ")));
        return true;
    }

    void VerifyShortMate(const TScriptLine& line) {
        OpenOptional(line);
        const bool remove = ToUpper(line.sFirst).find("REMOVE") != std::string::npos;
        std::vector<ProblemEntry> kept;
        size_t nFailed = 0;
        for (const ProblemEntry& entry : m_result.collection) {
            if (HasShortMate(entry))
                ++nFailed;
            else
                kept.push_back(entry);
        }
        const size_t before = m_result.collection.size();
        if (remove) m_result.collection = std::move(kept);
        Say(fmt::format("Short mates verified in {} problem(s): {} found{}\n", before, nFailed,
                        remove && nFailed ? ", removed" : ""));
        m_result.bAnyFailed = m_result.bAnyFailed || nFailed > 0;
    }

    TScriptEnvironment& m_env;
    TScriptResult m_result;
    std::filesystem::path m_collectionFile;
    std::unique_ptr<CRunRegister> m_runRegister;
};

}  // namespace

TScriptResult RunScriptText(std::string_view text, TScriptEnvironment& environment) {
    if (environment.output) environment.output("Running .vrs script...\n");
    CScript script(environment);
    int nLine = 0;
    for (size_t start = 0; start <= text.size() && !environment.testSettings.StopAsked();) {
        const size_t end = std::min(text.find('\n', start), text.size());
        script.Execute(ParseLine(text.substr(start, end - start), ++nLine));
        start = end + 1;
    }
    if (environment.output) environment.output("Script complete.\n");
    return std::move(script.Result());
}

TScriptResult RunScriptFile(const std::filesystem::path& file, TScriptEnvironment& environment) {
    const std::string text = ReadTextFile(file);
    environment.baseFolder = file.parent_path();
    return RunScriptText(text, environment);
}

}  // namespace moremate
