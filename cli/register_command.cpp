#include <fmt/core.h>

#include <cstring>

#include "commands.h"
#include "core/fen.h"
#include "engine/passes/run_register.h"
#include "problem_arg.h"
#include "problems/annotations/register_reference.h"
#include "problems/annotations/register_reference_text.h"
#include "problems/format/collection_files.h"
#include "problems/solving/problem_solving.h"
#include "problems/solving/solve_report.h"
#include "register_loading.h"
#include "registers/register_file.h"
#include "registers/register_statistics.h"
#include "settings/bounded_file.h"
#include "thread_options.h"

namespace moremate::cli {
namespace {

struct RegisterArgs {
    std::string file;
    size_t limit = 100;  // dump: rows at most
    // save, load, unpin: the problem's collection and number
    std::string collection;
    unsigned problem = 0;
    TSolveSettings solve;  // save: how the problem is solved
    bool pin = false;
};

void PrintStatistics(CRunRegister& r) {
    fmt::print("Positions with White to move:\n{}\n\n{}\n\n", RegisterStatistics(r.WhiteToMove()),
               RegisterSummary(r.WhiteToMove()));
    fmt::print("Positions with Black to move:\n{}\n\n{}\n", RegisterStatistics(r.BlackToMove()),
               RegisterSummary(r.BlackToMove()));
}

int RunStats(const RegisterArgs& args, TProgramContext& context) {
    PrintStatistics(*LoadRunRegister(args.file, context));
    return kExitOk;
}

std::string Placement(const TChessboardRegisterEntry& entry) {
    TChessboard board;
    std::memcpy(board.squares, entry.key.squares, 64);
    return WriteFenPlacement(board);
}

int RunDump(const RegisterArgs& args, TProgramContext& context) {
    const std::unique_ptr<CRunRegister> r = LoadRunRegister(args.file, context);
    fmt::print("Side\tHeuristics\tHeurParams\tnMovesMate/Doubtful\tnMovesNoMate/NotDoubtful\tPosition\n");
    size_t rows = 0;
    auto dump = [&](const char* side, const TAggregatedTemporaryChessboardRegister& reg) {
        reg.ForEachConfigurationEntry([&](uint64_t configuration, const TChessboardRegisterEntry& entry) {
            if (rows++ >= args.limit) return;
            fmt::print("{}\t{:08x}\t{:08x}\t{}\t{}\t{}\n", side, static_cast<uint32_t>(configuration),
                       static_cast<uint32_t>(configuration >> 32), entry.MovesMate, entry.MovesNoMate,
                       Placement(entry));
        });
    };
    dump("w", r->WhiteToMove());
    dump("b", r->BlackToMove());
    if (rows > args.limit) fmt::print("... {} more\n", rows - args.limit);
    return kExitOk;
}

// Edits the record's "//@tmpreg=" line in the collection, the rest of the file left as it is.
void SetRegisterReference(const RegisterArgs& args, std::optional<uint32_t> number) {
    WriteFileWithBackup(args.collection,
                        WithRegisterReference(ReadTextFile(args.collection), args.problem, number));
}

// Solves the problem (its referenced register loaded first, as for any solve) and saves the run's
// register: pinned, to the next free number, which the record then refers to ("//@tmpreg="); else
// to the given file or the file named after the problem.
int RunSave(const RegisterArgs& args, TProgramContext& context) {
    std::vector<ProblemEntry> entries = ReadProblems(args.collection, context);
    ProblemEntry& entry = FindProblem(entries, args.problem);
    TSolveSettings settings = args.solve;
    settings.autoSave = true;
    ApplyThreadDefaults(settings, context.options);
    const uint32_t number = args.pin ? NextFreeRegisterNumber() : 0;
    const std::filesystem::path file = args.pin ? ReferencedRegisterFile(number)
                                       : !args.file.empty()
                                           ? std::filesystem::path(args.file)
                                           : ProblemRegisterFile(args.collection, args.problem);
    PrepareRegisterSavePath(file);  // before the solving, which may take long
    std::unique_ptr<CRunRegister> runRegister;
    const TProblemReport report = SolveProblem(entry, settings, context.options, runRegister, nullptr);
    fmt::print("{}", ReportText(report));
    SaveRunRegister(file, *runRegister);
    fmt::print("Register saved: {}\n", file.string());
    if (args.pin) {
        SetRegisterReference(args, number);
        fmt::print("Problem {} refers to it: //@tmpreg={}\n", args.problem, number);
    }
    return kExitOk;
}

// Reads the problem's register (the given file, else the one the record refers to, else the
// file named after the problem) and prints its statistics.
int RunLoad(const RegisterArgs& args, TProgramContext& context) {
    std::vector<ProblemEntry> entries = ReadProblems(args.collection, context);
    const ProblemEntry& entry = FindProblem(entries, args.problem);
    const std::optional<uint32_t> number = TmpRegNumber(entry);
    const std::filesystem::path file = !args.file.empty() ? std::filesystem::path(args.file)
                                       : number           ? ReferencedRegisterFile(*number)
                                                : ProblemRegisterFile(args.collection, args.problem);
    PrintStatistics(*LoadRunRegister(file.string(), context));
    return kExitOk;
}

// Takes the "//@tmpreg=" reference off the record; the register file stays.
int RunUnpin(const RegisterArgs& args, TProgramContext& context) {
    std::vector<ProblemEntry> entries = ReadProblems(args.collection, context);
    ProblemEntry& entry = FindProblem(entries, args.problem);
    if (!entry.m_annotations.sTmpReg) {
        fmt::print("Problem {} refers to no register\n", args.problem);
        return kExitOk;
    }
    SetRegisterReference(args, std::nullopt);
    fmt::print("Problem {} no longer refers to a register\n", args.problem);
    return kExitOk;
}

void AddProblemOptions(CLI::App* cmd, RegisterArgs& args) {
    cmd->add_option("collection", args.collection, "Problem collection (.cp)")
        ->required()
        ->check(CLI::ExistingFile);
    cmd->add_option("--problem", args.problem, "Problem number")->required();
}

}  // namespace

Runner AddRegisterCommand(CLI::App& app, TProgramContext& context) {
    auto args = std::make_shared<RegisterArgs>();
    CLI::App* cmd = app.add_subcommand("register", "Save, load and look into temporary registers (.tmpReg)");
    cmd->require_subcommand(1);
    CLI::App* stats = cmd->add_subcommand("stats", "Load a register file and print its statistics");
    stats->add_option("file", args->file, "Register file")->required();
    CLI::App* dump = cmd->add_subcommand("dump", "Load a register file and list its entries");
    dump->add_option("file", args->file, "Register file")->required();
    dump->add_option("--limit", args->limit, "Rows at most (default 100)");
    CLI::App* save = cmd->add_subcommand("save", "Solve a problem and save its register");
    AddProblemOptions(save, *args);
    save->add_option("--to", args->file,
                     "Register file (default: SavedTmpRegisterData/<collection>-<problem>.tmpReg; "
                     ".lz4.tmpReg / .lz4e.tmpReg: packed)");
    save->add_flag(
        "--pin", args->pin,
        "Save to the next free SavedTmpRegisterData/<n>.tmpReg and refer the problem to it, so that "
        "solving loads it");
    save->add_flag("--all-solutions", args->solve.allSolutions, "Find every key");
    save->add_option("--time-limit", args->solve.timeLimitSeconds, "Seconds (0 = none)")
        ->check(CLI::NonNegativeNumber);
    AddThreadOptions(save, args->solve);
    save->get_option("--pin")->excludes("--to");
    CLI::App* load = cmd->add_subcommand("load", "Read a problem's register and print its statistics");
    AddProblemOptions(load, *args);
    load->add_option("--from", args->file,
                     "Register file (default: the problem's //@tmpreg= file, else the file named after it)");
    CLI::App* unpin = cmd->add_subcommand("unpin", "Take a problem's //@tmpreg= reference off its record");
    AddProblemOptions(unpin, *args);
    return [args, &context, stats, save, load, unpin] {
        if (stats->parsed()) return RunStats(*args, context);
        if (save->parsed()) return RunSave(*args, context);
        if (load->parsed()) return RunLoad(*args, context);
        if (unpin->parsed()) return RunUnpin(*args, context);
        return RunDump(*args, context);
    };
}

}  // namespace moremate::cli
