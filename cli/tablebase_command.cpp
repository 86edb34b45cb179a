#include <fmt/core.h>

#include <nlohmann/json.hpp>

#include "commands.h"
#include "core/chess_exception.h"
#include "position_arg.h"
#include "settings/program_folder.h"
#include "tablebase/tablebase_position.h"
#include "tablebase/tablebase_service.h"

namespace moremate::cli {
namespace {

struct TTablebaseArgs {
    std::string sFen;
    bool bJson = false;
};

nlohmann::json DistanceJson(int value, int absent) {
    return value == absent ? nlohmann::json() : nlohmann::json(value);
}

std::string DistanceText(int value, int absent) {
    return value == absent ? "none" : std::to_string(value);
}

void PrintJson(const std::string& fen, const TTablebaseLookup& lookup) {
    const TTablebaseAnswer& answer = lookup.answer;
    nlohmann::json moves = nlohmann::json::array();
    for (const TTablebaseMove& move : answer.m_vMoves)
        moves.push_back({{"uci", UciText(move)},
                         {"wdl", WdlText(move.m_byWdl)},
                         {"dtm", DistanceJson(move.m_shDtm, kNoDtm)},
                         {"dtz", DistanceJson(move.m_byDtz, kNoDtz)}});
    const nlohmann::json out = {{"fen", fen},
                                {"cached", lookup.bFromCache},
                                {"wdl", WdlText(answer.m_byWdl)},
                                {"dtm", DistanceJson(answer.m_shDtm, kNoDtm)},
                                {"dtz", DistanceJson(answer.m_byDtz, kNoDtz)},
                                {"moves", moves}};
    fmt::print("{}\n", out.dump());
}

void PrintText(const std::string& fen, const TTablebaseLookup& lookup) {
    const TTablebaseAnswer& answer = lookup.answer;
    fmt::print("FEN: {}\nSource: {}\n", fen, lookup.bFromCache ? "cache" : "service");
    fmt::print("WDL: {}\nDTM: {}\nDTZ: {}\nMoves: {}\n", WdlText(answer.m_byWdl),
               DistanceText(answer.m_shDtm, kNoDtm), DistanceText(answer.m_byDtz, kNoDtz), answer.m_nMoves);
    for (const TTablebaseMove& move : answer.m_vMoves)
        fmt::print("{} {} dtm {} dtz {}\n", UciText(move), WdlText(move.m_byWdl),
                   DistanceText(move.m_shDtm, kNoDtm), DistanceText(move.m_byDtz, kNoDtz));
}

int RunTablebase(const TTablebaseArgs& args, TProgramContext& context) {
    TChessboard board;
    ReadCommandLinePosition(args.sFen, board);
    if (const std::string why = WhyNotAskable(board); !why.empty()) throw ChessException(why);
    CTablebaseService service(context.options, context.reporter, ProgramFolder());
    const std::optional<TTablebaseLookup> lookup = service.LiChess().Query(board);
    if (!lookup) return kExitMismatch;
    if (args.bJson)
        PrintJson(TablebaseFen(board), *lookup);
    else
        PrintText(TablebaseFen(board), *lookup);
    return kExitOk;
}

}  // namespace

Runner AddTablebaseCommand(CLI::App& app, TProgramContext& context) {
    auto args = std::make_shared<TTablebaseArgs>();
    CLI::App* cmd =
        app.add_subcommand("tablebase", "Ask the online tablebase (or its cache) about a position");
    cmd->add_option("fen", args->sFen, "Position in FEN, 3 to 7 pieces")->required();
    cmd->add_flag("--json", args->bJson, "One JSON object: wdl, dtm, dtz, cached and the moves");
    return [args, &context] { return RunTablebase(*args, context); };
}

}  // namespace moremate::cli
