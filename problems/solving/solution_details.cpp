#include "solution_details.h"

#include <fmt/core.h>

#include <filesystem>

#include "core/chess_exception.h"
#include "core/notation.h"
#include "settings/program_folder.h"
#include "settings/replace_file.h"

namespace moremate {
namespace {

std::string ThreadLines(const TRunThreads& threads) {
    const size_t levels = static_cast<size_t>(threads.levels);
    const TThreadSettings settings{static_cast<size_t>(threads.threads), levels};
    std::string text = fmt::format("* Threads = {}\n* Effective number of main threads = {}\n",
                                   threads.threads, MainThreadsFor(settings, kMaxMainThreads));
    text += fmt::format("* Multithreading levels = {}\n", threads.levels);
    const TJuggledMoves juggled = JuggledMoves(threads.scheduler, levels, 0, false);
    text += juggled.Empty()
                ? std::string("* Scheduler is off\n")
                : fmt::format("* Scheduler is on: moves from {} to {} are 'juggled' by scheduler\n",
                              juggled.first, juggled.last);
    return text + (threads.scheduler.custom ? "* Custom scheduler is on\n" : "* Custom scheduler is off\n");
}

std::string SettingsLines(const TChessboard& root, const TPassState& firstPass, TSolutionCount solutions,
                          const TRunThreads& threads) {
    std::string text = "Main settings of current analysis\n";
    text += SolutionCountText(solutions) + "\n";
    text += firstPass.safeMode
                ? "* Safe mode is on (implicit quick mode heuristics is off)\n"
                : "* Quick mode implicit heuristics is on, but it does not affect second pass (without "
                  "heuristics), which is/will be run in safe mode\n";
    const uint8_t depth = firstPass.set.params.quickMateDepth;
    text += depth ? fmt::format("* Custom depth of search for short mate: #{}\n", depth)
                  : "* Default depth of search for short mate (typically #7, sometimes #6 or #8)\n";
    text += ThreadLines(threads);
    text += "* Initial set of heuristics: " +
            (firstPass.set.mask ? PassSetText(firstPass, &root) : std::string("none")) + "\n";
    return text;
}

std::string FoundLines(const TChessboard& root, const TPassRunResult& result) {
    std::string text;
    for (const TPassSummary& p : result.passes)
        text += fmt::format("Pass {} ({}): {} nodes, {} ms\n", p.pass,
                            p.setText.empty() ? "no heuristics" : p.setText, p.nodes, p.msec);
    if (result.keys.empty()) text += "No solution found\n";
    for (const TPassKey& k : result.keys)
        text += fmt::format("Key {} (pass {}): {}\n", MoveToText(root, k.key.move), k.pass,
                            SolutionLine(root, k.key.mainLine));
    return text;
}

std::string Notes(TSolutionCount solutions) {
    std::string text =
        "\nNotes:\n * in order to stop generating and/or displaying solution details select the menu item "
        "Advanced->Options and uncheck radio box 'Create solution details' and click 'Save settings'";
    if (solutions == TSolutionCount::Single)
        text +=
            "\n * duals are not searched for in the single solution mode (use right click for all solutions "
            "or "
            "from menu: brute force, hybrid brute force or all solutions)";
    return text + "\n * late duals not always will be found/displayed\n\n";
}

}  // namespace

std::string SolutionDetailsText(const ProblemEntry& entry, const TChessboard& root,
                                const TPassState& firstPass, TSolutionCount solutions,
                                const TRunThreads& threads, const TPassRunResult& result) {
    return fmt::format("Problem {} #{}\n", entry.m_nNumber, entry.StipulationMoves()) +
           SettingsLines(root, firstPass, solutions, threads) + "\n" + FoundLines(root, result) +
           Notes(solutions);
}

void WriteSolutionDetails(const ProblemEntry& entry, const TChessboard& root, const TPassState& firstPass,
                          TSolutionCount solutions, const TRunThreads& threads,
                          const TPassRunResult& result) {
    const std::filesystem::path file = ProgramFolder() / "SolutionDetails.log";
    if (!ReplaceFile(file, SolutionDetailsText(entry, root, firstPass, solutions, threads, result)))
        throw ChessException("Error writing file: " + file.string());
}

}  // namespace moremate
