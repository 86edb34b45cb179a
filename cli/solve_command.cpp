#include <fmt/core.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <set>

#include "commands.h"
#include "core/notation.h"
#include "engine/heuristics/heuristic_text.h"
#include "engine/heuristics/predefined_heuristics.h"
#include "engine/passes/solver.h"
#include "engine/search/observed_lines.h"
#include "precalc/global/global_registers.h"
#include "problems/format/collection_reader.h"
#include "problems/format/problem_moves.h"
#include "problems/solving/problem_solving.h"
#include "problems/solving/solve_report.h"
#include "problems/solving/tablebase_access.h"
#include "progress_line.h"
#include "register_loading.h"
#include "registers/chunk_allocator.h"
#include "registers/register_combined_map.h"
#include "registers/register_file.h"
#include "registers/register_statistics.h"
#include "run_keys.h"
#include "thread_options.h"

namespace moremate::cli {
namespace {

struct SolveArgs {
    std::string file;
    std::vector<unsigned> problems;
    TSolveSettings settings;
    std::string heuristics;
    bool json = false;
    bool registerStats = false;
    std::optional<std::string> saveRegister;
    std::string loadRegister;
};

void PrintRegisterStatistics(CRunRegister& runRegister) {
    fmt::print(stderr, "Register of positions with White to move:\n{}\n\n",
               RegisterStatistics(runRegister.WhiteToMove()));
    fmt::print(stderr, "Register of positions with Black to move:\n{}\n",
               RegisterStatistics(runRegister.BlackToMove()));
    const TGlobalRegisterCounts counts = TGlobalRegisters::Instance().Counts();
    fmt::print(stderr, "Precalculated data: {} look-ups, {} mates, {} no mates, {} unknown\n{}",
               counts.m_nLookups, counts.m_nMates, counts.m_nNoMates, counts.m_nUnknown,
               TGlobalRegisters::Instance().StatusText());
    fmt::print(stderr, "Register memory:\n{}", ChunkAllocatorReport(RegisterChunkAllocator().Statistics()));
}

bool Selected(const SolveArgs& args, unsigned number) {
    return args.problems.empty() ||
           std::find(args.problems.begin(), args.problems.end(), number) != args.problems.end();
}

int RunSolve(SolveArgs& args, TProgramContext& context) {
    ApplyThreadDefaults(args.settings, context.options);
    const std::unique_ptr<CTablebaseService> tablebase = TablebaseForRuns(context.options, context.reporter);
    args.settings.tablebase = LiChessOf(tablebase);
    if (args.settings.observerLevels < 0)
        args.settings.observerLevels = std::max(0, static_cast<int>(context.options.m_shObserverLevels));
    if (!args.heuristics.empty()) {
        ReadHeuristicSetText(args.heuristics);  // a faulty text stops here, before any problem runs
        args.settings.heuristics = args.heuristics;
    }
    ApplyPredefinedAdditionalHeuristics({}, args.settings.additionalHeuristics);  // the same for the tokens
    if (args.saveRegister) PrepareRegisterSavePath(*args.saveRegister);           // before hours of solving
    std::vector<ProblemEntry> entries;
    std::string readError;
    try {
        ReadCollectionFile(args.file, entries, false, TCollectionReading{{&context.reporter, 1}, {}});
    } catch (const ChessException& e) {
        readError = fmt::format("{}: {}", args.file, e.what());
        fmt::print(stderr, "{}\n", readError);
        if (entries.empty()) return kExitBadInput;
    }
    bool allMatched = true;
    std::unique_ptr<CRunRegister> runRegister;
    if (!args.loadRegister.empty()) runRegister = LoadRunRegister(args.loadRegister, context);
    CProgressLine line;
    CRunControl control;
    const CRunKeys keys(control, [&line](const std::string& text) { line.Say(text); });
    args.settings.run.control = &control;
    args.settings.run.reporter = &context.reporter;
    args.settings.autoSave = true;
    if (line.Terminal()) args.settings.run.onProgress = [&line](const TRunProgress& p) { line.Show(p); };
    TSolveSummary summary;
    const auto start = std::chrono::steady_clock::now();
    for (const ProblemEntry& entry : entries) {
        if (!Selected(args, entry.m_nNumber)) continue;
        const std::optional<std::string> registerLoad =
            PrepareRunRegister(entry, context.options, runRegister);
        TProblemReport report =
            SolvePreparedProblem(entry, args.settings, context.options, *runRegister, nullptr);
        line.Clear();
        report.registerLoad = registerLoad;
        fmt::print("{}", args.json ? ReportJson(report) : ReportText(report));
        if (args.registerStats && report.proofNumberStats) fmt::print(stderr, "{}", *report.proofNumberStats);
        if (args.registerStats && report.regionStats) fmt::print(stderr, "{}", *report.regionStats);
        std::fflush(stdout);
        summary.Add(report);
        if (report.match == false || report.error || !report.failedChecks.empty()) allMatched = false;
        if (control.StoppedByUser()) break;
    }
    summary.msec =
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start)
            .count();
    fmt::print(args.json ? stderr : stdout, "{}", SummaryText(summary));
    if (args.registerStats && runRegister) PrintRegisterStatistics(*runRegister);
    if (args.saveRegister && runRegister) SaveRunRegister(*args.saveRegister, *runRegister);
    g_bTablesLeftToTheSystem = true;  // the program ends with this command
    if (!readError.empty()) return kExitBadInput;
    return allMatched && !control.StoppedByUser() ? kExitOk : kExitMismatch;
}

}  // namespace

Runner AddSolveCommand(CLI::App& app, TProgramContext& context) {
    auto args = std::make_shared<SolveArgs>();
    CLI::App* cmd = app.add_subcommand("solve", "Solve the directmates of a .cp collection");
    cmd->footer(
        "Keys while solving with stdin on a terminal: p pauses and resumes, s skips to the next move,\n"
        "q stops (Ctrl-C stops too).");
    cmd->add_option("file", args->file, "Problem collection (.cp)")->required()->check(CLI::ExistingFile);
    cmd->add_option("--problem", args->problems, "Only these problem numbers (repeatable)");
    TSolveSettings& s = args->settings;
    cmd->add_flag("--all-solutions", s.allSolutions, "Find every key, cooks included");
    cmd->add_option("--stop-on", s.stopOn, "Stop after 2, 3 or 4 solutions")->check(CLI::Range(2, 4));
    cmd->add_flag("--brute-force", s.bruteForce, "One pass without any heuristics, every solution");
    cmd->add_flag("--hybrid", s.hybrid, "Heuristic passes for one solution, then brute force for the others");
    cmd->add_option("--heuristics", args->heuristics,
                    "Pass 1's heuristics as a set text, e.g. \"SH_KEEPKINGONTHEEDGE\"");
    cmd->add_option(
        "--after", s.after,
        "Moves played after the position before it is analysed, in pairs, e.g. \"Qa7-f2 Kc1-d1\"");
    cmd->add_option(
        "--add-heuristics", s.additionalHeuristics,
        "Tokens added to pass 1's heuristics, e.g. \"SafeMode DLFU(h1,d5) FFM(#2) LFQMDepth(#5) !DLFU\"");
    cmd->add_flag("--no-heuristics", s.noHeuristics, "No heuristic passes: pass 2 only");
    cmd->add_flag("--no-pass2", s.noPassTwo, "No pass without heuristics after the heuristic passes");
    cmd->add_option_function<std::string>(
           "--regions",
           [&s](const std::string& text) {
               if (!ReadRegionMode(text, s.regions))
                   throw CLI::ValidationError("--regions", "auto, off or on expected, not \"" + text + "\"");
           },
           "Settle positions of few pieces without castling by a retrograde analysis of the positions "
           "their pieces reach: auto (blocked positions with locked pawns), off, or on (every such "
           "position; slow where they are not needed)")
        ->type_name("auto|off|on");
    cmd->add_option_function<std::string>(
           "--proof-number",
           [&s](const std::string& text) {
               if (!ReadProofNumberMode(text, s.proofNumber))
                   throw CLI::ValidationError("--proof-number",
                                              "auto, off or only expected, not \"" + text + "\"");
           },
           "The proof-number pass: auto (before the others, beyond #6), off, or only (alone)")
        ->type_name("auto|off|only");
    cmd->add_option("--time-limit", s.timeLimitSeconds, "Seconds per problem (0 = none)")
        ->check(CLI::NonNegativeNumber);
    cmd->add_flag("--solution-details", s.solutionDetails, "Write SolutionDetails.log in the program folder");
    cmd->add_option("--save-register", args->saveRegister,
                    "Save the register at the end (.lz4.tmpReg / .lz4e.tmpReg: packed, else plain)");
    cmd->add_option("--load-register", args->loadRegister, "Load a saved register before the first problem")
        ->check(CLI::ExistingFile);
    AddThreadOptions(cmd, s);
    s.observerLevels = -1;  // the options' ObserverLevels
    cmd->add_option("--observer-levels", s.observerLevels,
                    "White moves below the levels shown per thread in the status line (default: options.ini)")
        ->check(CLI::Range(0, static_cast<int>(kMaxObservedMoves) - 1));
    cmd->add_flag("--json", args->json, "One JSON object per problem per line");
    cmd->add_flag("--register-stats", args->registerStats,
                  "Print the register's statistics on stderr at the end");
    s.passStatus = isatty(STDERR_FILENO);
    cmd->get_option("--heuristics")->excludes("--no-heuristics");
    cmd->get_option("--add-heuristics")->excludes("--no-heuristics");
    return [args, &context] { return RunSolve(*args, context); };
}

}  // namespace moremate::cli
