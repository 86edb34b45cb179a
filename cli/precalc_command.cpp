// moremate precalc: generates, verifies, describes and probes the precalculated endgame data.
#include <fmt/core.h>

#include <algorithm>

#include "commands.h"
#include "core/chess_exception.h"
#include "core/fen.h"
#include "position_arg.h"
#include "precalc/generator/generator.h"
#include "precalc/generator/longest_mate.h"
#include "precalc/generator/lookahead.h"
#include "precalc/generator/partial_verification.h"
#include "precalc/generator/verification.h"
#include "precalc/global/recompress.h"
#include "settings/machine.h"

namespace moremate::cli {
namespace {

struct TPrecalcArgs {
    std::vector<std::string> types;
    int all = 0;
    std::string form = "lz4";
    unsigned threads = 0;
    bool force = false;
    bool partial = false;  // verify: what an interrupted generation left
    bool custom = false;
    std::string fen;
    std::string type;  // probe: the type to look in
};

TGlobalRegisters& ConfiguredRegisters(TProgramContext& context, bool bForMaking) {
    TGlobalRegisterSettings settings = TGlobalRegisterSettings::FromOptions(context.options);
    if (bForMaking) settings.m_bForceDiskAccess = false;  // the generator reads other types at every move
    TGlobalRegisters& registers = TGlobalRegisters::Instance();
    registers.Configure(settings, &context.questions);
    return registers;
}

// Every type of `pieces` men, kings included: the pieces besides the kings as a multiset.
void AddTypesOfSize(int left, size_t from, const std::string& letters, std::string& pieces,
                    std::vector<std::string>& out) {
    if (left == 0) {
        std::string description = "K";
        for (const char c : pieces)
            if (std::isupper(static_cast<unsigned char>(c))) description += c;
        description += 'k';
        for (const char c : pieces)
            if (std::islower(static_cast<unsigned char>(c))) description += c;
        out.push_back(description);
        return;
    }
    for (size_t i = from; i < letters.size(); ++i) {
        pieces.push_back(letters[i]);
        AddTypesOfSize(left - 1, i, letters, pieces, out);
        pieces.pop_back();
    }
}

std::vector<TPrecalcType> TypesToMake(const TPrecalcArgs& args) {
    std::vector<std::string> names = args.types;
    if (args.all != 0 && (args.all < 3 || args.all > kMaxPrecalcPieces))
        throw ChessException(fmt::format("--all takes a piece count from 3 to {}", kMaxPrecalcPieces));
    for (int size = 3; size <= args.all; ++size) {
        std::string pieces;
        AddTypesOfSize(size - 2, 0, "QRBNPqrbnp", pieces, names);
    }
    if (names.empty()) throw ChessException("No position type given (a type such as KQk, or --all N)");
    std::vector<TPrecalcType> types;
    for (const std::string& name : names) types.push_back(TPrecalcType::ParseAny(name, args.custom));
    return types;
}

unsigned Threads(const TPrecalcArgs& args) {
    return args.threads == 0 ? std::max(1u, LogicalProcessorCount()) : args.threads;
}

void PrintGenerated(const TGenerationReport& r) {
    fmt::print(
        "{}: {} indexes, {} White-to-move mates (longest {}), {} Black-to-move mated, {} levels, {:.2f} s, "
        "{:.1f} MB\n",
        r.m_sDescription, r.m_nIndexes, r.m_nWhiteMates, r.m_nLongestMate, r.m_nBlackMated, r.m_nLevels,
        r.m_dSeconds, r.m_nPeakBytes / 1048576.0);
    std::fflush(stdout);
}

int RunGenerate(TProgramContext& context, const TPrecalcArgs& args) {
    TGenerationOptions options;
    options.m_kind = StorageKindNamed(args.form);
    options.m_nThreads = Threads(args);
    options.m_bProgress = true;
    options.m_bRegenerate = args.force;
    const std::vector<TPrecalcType> types = TypesToMake(args);
    TGlobalRegisters& registers = ConfiguredRegisters(context, true);
    const auto start = std::chrono::steady_clock::now();
    for (const TPrecalcType& type : types) {
        if (!args.force && !registers.FileToLoad(type).empty()) {
            fmt::print("{}: present\n", type.Description());
            continue;
        }
        EnsureTypeData(registers, type, options, PrintGenerated);
    }
    fmt::print("Generated in {:.1f} s\n",
               std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    return kExitOk;
}

// The report of one type's verification; true when it found faults.
bool PrintVerified(const std::string& description, const TVerificationReport& r) {
    fmt::print("{}: {} indexes checked, {} fault(s)\n", description, r.m_nChecked, r.m_nFaults);
    for (size_t i = 0; i < std::min<size_t>(5, r.m_vFaults.size()); ++i) fmt::print("  {}\n", r.m_vFaults[i]);
    if (r.m_nFaults != 0) fmt::print("Fault list: {}\n", r.m_faultFile.string());
    return r.m_nFaults != 0;
}

// The types on disk among those the type's generation makes (itself included); true on faults.
bool VerifyPartially(TGlobalRegisters& registers, const TPrecalcType& type, unsigned threads) {
    const TPartialVerification result = VerifyPartialData(registers, type, threads, true);
    bool faults = false;
    for (const auto& [description, report] : result.m_vVerified) faults |= PrintVerified(description, report);
    for (const std::string& note : PartialVerificationNotes(result)) fmt::print("{}\n", note);
    return faults;
}

int RunVerify(TProgramContext& context, const TPrecalcArgs& args) {
    TGlobalRegisters& registers = ConfiguredRegisters(context, true);
    bool faults = false;
    for (const TPrecalcType& type : TypesToMake(args)) {
        if (args.partial)
            faults |= VerifyPartially(registers, type, Threads(args));
        else
            faults |= PrintVerified(type.Description(),
                                    VerifyTypeData(registers, registers.Require(type), Threads(args), true));
    }
    return faults ? kExitMismatch : kExitOk;
}

void PrintTypeInfo(TGlobalRegisters& registers, const TPrecalcType& type) {
    const TGlobalRegister& reg = registers.Require(type);
    const CGlobalStorage& storage = reg.Storage();
    const TLongestMate longest = LongestMate(type, storage);
    fmt::print("Type: {}\nFile: {}\nIndexes: {} ({} per side to move)\nForm: {}\nMemory: {} bytes\n",
               type.Description(), registers.FileToLoad(type).string(), storage.ElementCount(),
               type.PlacementCount(), StorageFormName(storage.Form()), storage.MemoryBytes());
    TChessboard board;
    if (longest.nValue == 0 || !SetUpPlacement(type, longest.nIndex, true, board)) {
        fmt::print("Longest mate: none\n");
        return;
    }
    fmt::print("Longest mate: White mates in {}: {} w\n", longest.nValue, WriteFenPlacement(board));
}

int RunInfo(TProgramContext& context, const TPrecalcArgs& args) {
    TGlobalRegisters& registers = ConfiguredRegisters(context, false);
    for (const std::string& name : args.types)
        PrintTypeInfo(registers, TPrecalcType::ParseAny(name, args.custom));
    if (args.types.empty()) {
        const std::set<std::string> onDisk = registers.TypesOnDisk();
        fmt::print("Data folder: {}\n{} position type(s) on disk:",
                   registers.Settings().m_dataFolder.string(), onDisk.size());
        for (const std::string& description : onDisk) fmt::print(" {}", description);
        fmt::print("\n");
    }
    fmt::print("{}", registers.StatusText());
    return kExitOk;
}

int RunProbe(TProgramContext& context, const TPrecalcArgs& args) {
    TChessboard board;
    ReadCommandLinePosition(args.fen, board);
    TGlobalRegisters& registers = ConfiguredRegisters(context, false);
    TGlobalRegister* reg = nullptr;
    if (args.type.empty()) {
        reg = registers.Find(board);
    } else {
        const TPrecalcType type = TPrecalcType::ParseAny(args.type, args.custom);
        if (!type.ContainsPosition(board.squares))
            throw ChessException("The position is not one of type " + type.Description());
        reg = &registers.Require(type);
    }
    const int halfMoves = reg ? reg->HalfMovesToMate(board) : kStoredUnknown;
    if (halfMoves == kStoredUnknown)
        fmt::print("unknown\n");
    else if (halfMoves == kStoredNoMate)
        fmt::print("no mate\n");
    else if (halfMoves == 0)
        fmt::print("Black is mated\n");
    else
        fmt::print("White mates in {}\n", (halfMoves + 1) / 2);
    fmt::print("{}", registers.StatusText());
    return kExitOk;
}

int RunRecompress(TProgramContext& context, const TPrecalcArgs& args) {
    const TStorageKind kind = StorageKindNamed(args.form);
    TGlobalRegisters& registers = ConfiguredRegisters(context, false);
    const std::filesystem::path folder = registers.Settings().m_dataFolder;
    for (const std::string& name : args.types) {
        const TPrecalcType type = TPrecalcType::ParseAny(name, args.custom);
        const std::filesystem::path file = registers.FileToLoad(type);
        if (file.empty())
            throw ChessException("No data file of " + type.Description() + " in " + folder.string());
        const uint64_t before = std::filesystem::file_size(file);
        const std::filesystem::path written = RecompressTypeData(folder, type, file, kind);
        fmt::print("{}: {} ({} bytes) -> {} ({} bytes)\n", type.Description(), file.filename().string(),
                   before, written.filename().string(), std::filesystem::file_size(written));
    }
    return kExitOk;
}

}  // namespace

Runner AddPrecalcCommand(CLI::App& app, TProgramContext& context) {
    auto args = std::make_shared<TPrecalcArgs>();
    CLI::App* cmd = app.add_subcommand(
        "precalc", "Precalculated endgame data: generate, verify, info, probe, recompress");
    cmd->require_subcommand(1);
    CLI::App* generate =
        cmd->add_subcommand("generate", "Generate the data of position types (smaller ones first)");
    generate->add_option("types", args->types, "Position types such as KQk, KRkp");
    generate->add_option("--all", args->all, "Every type of 3 up to N pieces, kings included");
    generate->add_option("--form", args->form,
                         "Storage form of the files: lz4, lzw, packed-lz4, plain, 2bit, rle");
    generate->add_option("--threads", args->threads, "Threads (default: the logical processors)");
    generate->add_flag("--force", args->force, "Generate again when the file exists");
    CLI::App* verify = cmd->add_subcommand("verify", "Check stored values against one move ahead");
    verify->add_option("types", args->types, "Position types")->required();
    verify->add_option("--threads", args->threads, "Threads (default: the logical processors)");
    verify->add_flag("--partial", args->partial,
                     "Data of an interrupted or incomplete generation: the types on disk among those the "
                     "type's generation makes, the type included");
    CLI::App* info = cmd->add_subcommand("info", "The data on disk and in memory; with a type, its figures");
    info->add_option("type", args->types, "Position type");
    CLI::App* probe =
        cmd->add_subcommand("probe", "Look a position up: White mates in N, no mate or unknown");
    probe->add_option("fen", args->fen, "Position in FEN (its side to move is honoured)")->required();
    probe->add_option("--type", args->type,
                      "Look in this type (a custom one, say) instead of the material's");
    CLI::App* recompress = cmd->add_subcommand(
        "recompress",
        "Rewrite data files in another form; the old file goes once the new one reads back the same");
    recompress->add_option("types", args->types, "Position types")->required();
    recompress->add_option("--form", args->form, "The new form: lzw, packed-lz4, lz4, plain, 2bit, rle")
        ->required();
    for (CLI::App* sub : {generate, verify, info, probe, recompress})
        sub->add_flag("--custom", args->custom,
                      "Custom types, read from CustomPrecalc/ (implied by +, (, X, ?)");
    return [args, &context, generate, verify, info, recompress] {
        if (generate->parsed()) return RunGenerate(context, *args);
        if (verify->parsed()) return RunVerify(context, *args);
        if (info->parsed()) return RunInfo(context, *args);
        if (recompress->parsed()) return RunRecompress(context, *args);
        return RunProbe(context, *args);
    };
}

}  // namespace moremate::cli
