#include <fmt/core.h>

#include "commands.h"
#include "core/chess_exception.h"
#include "core/chessboard_id.h"
#include "core/fen.h"
#include "core/movegen.h"
#include "position_arg.h"

namespace moremate::cli {
namespace {

std::string RightsText(uint8_t rights) {
    std::string text;
    if (rights & kWhiteKingside) text += 'K';
    if (rights & kWhiteQueenside) text += 'Q';
    if (rights & kBlackKingside) text += 'k';
    if (rights & kBlackQueenside) text += 'q';
    return text.empty() ? "-" : text;
}

int RunFen(const std::string& fen) {
    TChessboard board;
    ReadCommandLinePosition(fen, board);
    fmt::print("FEN: {}\n", WriteFen(board));
    fmt::print("Side to move: {}\n", board.WhiteToMove() ? "White" : "Black");
    fmt::print("Castling: {}\n", RightsText(CastlingRights(board)));
    fmt::print("Id: {}\n", ToAlphanum6(EncodeId(board.squares)));
    return kExitOk;
}

}  // namespace

Runner AddFenCommand(CLI::App& app) {
    auto fen = std::make_shared<std::string>();
    CLI::App* cmd =
        app.add_subcommand("fen", "Validate a position and print its normalised FEN and identifier");
    cmd->add_option("fen", *fen, "Position in FEN")->required();
    return [fen] { return RunFen(*fen); };
}

}  // namespace moremate::cli
