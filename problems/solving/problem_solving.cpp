#include "problem_solving.h"

#include <fmt/core.h>

#include <algorithm>

#include "core/chess_exception.h"
#include "core/fen.h"
#include "core/notation.h"
#include "engine/heuristics/heuristic_text.h"
#include "engine/heuristics/position_type.h"
#include "engine/heuristics/predefined_heuristics.h"
#include "engine/lookup/tablebase_lookup.h"
#include "engine/passes/passes.h"
#include "engine/rules/special_heuristics.h"
#include "engine/run/run_texts.h"
#include "engine/search/first_move_order.h"
#include "engine/search/precalc_hook.h"
#include "engine/state/current_problem.h"
#include "engine/state/run_control.h"
#include "engine/state/solving_run.h"
#include "engine/threads/scheduler.h"
#include "preferred_first_moves.h"
#include "problem_heuristics.h"
#include "problems/annotations/register_reference.h"
#include "problems/format/problem_moves.h"
#include "run_autosave.h"
#include "settings/program_folder.h"
#include "solution_details.h"
#include "solving_task.h"

namespace moremate {
namespace {

bool MoveLess(const TMove& a, const TMove& b) {
    return std::tuple(a.from, a.to, a.PromotedType()) < std::tuple(b.from, b.to, b.PromotedType());
}

// Full answers must agree with every key found; in single-solution mode the key found must be
// one of them. Expected move orders are not compared here.
std::optional<bool> Matches(const ProblemEntry& entry, const TPassRunResult& result, bool allSolutions) {
    if (entry.m_answerKind != AnswerKind::Full || result.stopped) return std::nullopt;
    std::vector<TMove> expected = entry.m_vAnswer, found;
    for (const TPassKey& k : result.keys) found.push_back(k.key.move);
    std::sort(expected.begin(), expected.end(), MoveLess);
    std::sort(found.begin(), found.end(), MoveLess);
    if (allSolutions) return found == expected;
    if (found.empty()) return expected.empty();
    return std::find(expected.begin(), expected.end(), found.front()) != expected.end();
}

std::string ResultWord(const TPassRunResult& r) {
    if (!r.keys.empty()) return "solved";
    if (r.stopped || r.result == kDoubtful) return "stopped";
    return "no solution";
}

void Describe(const TChessboard& root, const TPassRunResult& result, TProblemReport& report) {
    report.result = ResultWord(result);
    for (const TPassKey& k : result.keys) {
        report.keys.push_back(AnswerMoveText(root, k.key.move));
        report.keysLong.push_back(MoveToText(root, k.key.move));
        report.found.push_back({report.keys.back(), k.pass, k.setText});
    }
    if (!result.keys.empty()) report.mainLine = SolutionLine(root, result.keys.front().key.mainLine);
    if (result.proofNumber) report.proofNumberStats = ProofNumberStatsText(*result.proofNumber);
    if (result.regions) report.regionStats = RegionStatsText(*result.regions);
    for (const TPassSummary& p : result.passes) {
        report.msec += p.msec;
        report.nodes += p.nodes;
    }
}

TSolutionCount SolutionCount(const ProblemEntry& entry, const TSolveSettings& settings) {
    if (settings.allSolutions || entry.Has(kOptAllSolutions)) return TSolutionCount::All;
    const int stopOn = settings.stopOn             ? settings.stopOn
                       : entry.Has(kOptStopOn4Sol) ? 4
                       : entry.Has(kOptStopOn3Sol) ? 3
                       : entry.Has(kOptStopOnDual) ? 2
                                                   : 1;
    return static_cast<TSolutionCount>(stopOn);
}

// Pass 1's set: the user's, or the engine's own choice from the position, then the record's
// per-problem switches and parameters, then the additional tokens ("!DLFU" takes back a DLFU the
// engine chose itself).
TPredefinedHeuristics PassOneSet(const ProblemEntry& entry, const TChessboard& root,
                                 const TSolveSettings& settings) {
    if (settings.noHeuristics) return {};
    THeuristicSet set = settings.userSet      ? *settings.userSet
                        : settings.heuristics ? ReadHeuristicSetText(*settings.heuristics).m_set
                                              : PositionTypeHeuristics(root);
    set = ApplyProblemHeuristics(entry, set);
    TPredefinedHeuristics added = ApplyPredefinedAdditionalHeuristics(set, settings.additionalHeuristics);
    if (!added.m_bDlfuForbidden || settings.UserChoseSet()) return added;
    set.Remove(SH_DONTLETFIGUREUNBLOCK);
    return ApplyPredefinedAdditionalHeuristics(set, settings.additionalHeuristics);
}

// The White move levels asked of the online tablebase: the set's "SyzygyLevels(n)", else the
// record's LICHESSLEVELS, else the option LichessLevels.
int TablebaseLevels(const ProblemEntry& entry, const TChessboard& root, const TSolveSettings& settings,
                    const TOptions& options) {
    if (const std::optional<int> levels = PassOneSet(entry, root, settings).m_nSyzygyLevels) return *levels;
    return entry.m_nLichessLevels.value_or(options.m_shLichessLevels);
}

// The tablebase counts as available once it has answered; a record that requires it waits for
// every answer before it is checked.
TAvailableData AvailableAfterRun(const ProblemEntry& entry, const TSolveSettings& settings,
                                 std::optional<CTablebaseLookup>& lookup) {
    TAvailableData available = settings.available;
    available.precalculated.merge(TGlobalRegisters::Instance().TypesOnDisk());
    if (!lookup) return available;
    if (entry.Has(kOptRequiresSyzygy) || entry.Has(kOptAllSolutionsRequiresSyzygy))
        lookup->Wait();
    else
        lookup->Stop();
    available.bSyzygy = available.bSyzygy || lookup->Answers() > 0;
    return available;
}

TPassState PassState(const ProblemEntry& entry, const TChessboard& root, const TSolveSettings& settings,
                     const TOptions& options) {
    TPassState state;
    const TPredefinedHeuristics passOne = PassOneSet(entry, root, settings);
    state.set = passOne.m_set;
    // The engine asks for dynamic DLFU only with a set of its own choice, and "!DLFU" refuses it.
    state.pendingDynamicDlfu = !settings.noHeuristics && !settings.UserChoseSet() &&
                               state.set.params.dlfuDynamic && PositionTypeCheck(root).pendingDynamicDlfu;
    state.relaxationAllowed = !entry.Has(kOptDontRelaxHeuristics) && !settings.noRelaxation;
    state.pass2Allowed = !settings.noPassTwo && !entry.Has(kOptDontRunPassTwo);
    state.stopRelaxOnFirstSolution = entry.m_bStopRelaxOnFirstSolution;
    state.quickMode = options.m_bQuickMode;
    state.safeMode = SafeModeForRun(
        options.m_bQuickMode, entry.Has(kOptSafeMode) || passOne.m_bSafeModeForced, settings.bruteForce);
    return state;
}

TBruteForce BruteForce(const ProblemEntry& entry, const TSolveSettings& settings) {
    if (settings.bruteForce || entry.Has(kOptBruteForce)) return TBruteForce::Full;
    if (settings.hybrid || entry.Has(kOptHybridBruteForce)) return TBruteForce::Hybrid;
    return TBruteForce::Off;
}

TPassRunResult RunProblem(const ProblemEntry& entry, const TSolvingTask& task, const TSolveSettings& settings,
                          const TOptions& options, CRunRegister& runRegister,
                          std::atomic<uint64_t>* progress) {
    TPassRunRequest request;
    request.position = task.position;
    request.state = PassState(entry, task.position, settings, options);
    request.solutions = SolutionCount(entry, settings);
    request.bruteForce = BruteForce(entry, settings);
    request.timeLimitSeconds = settings.timeLimitSeconds;
    request.threads.threads = entry.m_nThreads != kThreadsNotGiven ? entry.m_nThreads : settings.threads;
    request.threads.levels = settings.levels;
    request.threads.observerLevels = settings.observerLevels;
    request.threads.scheduler = SchedulerSettingsForRun(options, task.position.movesLeft);
    request.environment.store = &runRegister;
    request.environment.progressNodes = progress;
    if (!entry.Has(kOptNoGlobReg)) request.environment.globalRegister = ProcessPrecalcHook();
    request.environment.useGlobalRules = options.m_bUseGlobalRules;
    request.runRegister = &runRegister;
    request.proofNumber = settings.proofNumber;
    request.regions = settings.regions;
    request.proofNumberTableBytes = ProofNumberTableBytes(options.TempRegQuotaMB());
    request.preferredFirstMoves = PreferredFirstMoves(entry, options.m_nLanguageId);
    const TChessboard root = task.position;
    request.hooks = [root](const THeuristicSet& set) -> std::unique_ptr<CHeuristicHook> {
        if (set.mask == 0) return nullptr;
        return std::make_unique<CSpecialHeuristics>(set, root);
    };
    request.relaxation.log = options.m_bTryRelaxSpecialHeuristicsLog;
    request.relaxation.engineLogPath = "engine.log";
    if (settings.passStatus)
        request.output = [](const std::string& line) { fmt::print(stderr, "{}\n", line); };
    std::optional<CSearchLog> moveLog;
    if (options.m_bLogMoves) {
        const std::string folder = ProgramFolder().string();  // beside options.ini, as the other logs
        moveLog.emplace(folder, entry.m_nNumber, 0);
        request.environment.log = &*moveLog;
        request.environment.logFolder = folder;
    }
    const TPassState firstState = request.state;
    const TSolutionCount solutions = request.solutions;
    const TRunThreads threads = request.threads;
    const std::unique_ptr<CRegisterAutoSave> autoSave =
        settings.autoSave ? StartRunAutoSave(entry, firstState, settings.UserChoseSet(), options, runRegister)
                          : nullptr;
    TRunServices services = settings.run;
    services.autoSave = autoSave.get();
    TPassRunResult result = RunPassesWithServices(std::move(request), services);
    if (settings.solutionDetails)
        WriteSolutionDetails(entry, task.position, firstState, solutions, threads, result);
    return result;
}

// A stop from the interface leads the outcome; a run without solution ends with the result of
// the analysis.
void AddRunTexts(const ProblemEntry& entry, const TSolveSettings& settings, const TPassRunResult& result,
                 TProblemReport& report) {
    const bool byUser = result.stopped && settings.run.control && settings.run.control->StoppedByUser();
    if (byUser)
        report.outcome = fmt::format("{}\n{}\n{}", kAnalysisStoppedText,
                                     SolutionsSoFarText(result.keys.size()), report.outcome);
    if (!result.keys.empty()) return;
    const bool passTwoOff = (settings.noPassTwo || entry.Has(kOptDontRunPassTwo)) && !result.fromRegister &&
                            std::none_of(result.passes.begin(), result.passes.end(),
                                         [](const TPassSummary& pass) { return pass.pass == "2"; });
    const int seconds = result.fromRegister ? -1 : static_cast<int>(report.msec / 1000);
    report.outcome +=
        fmt::format("\n{}: {}{}{}", kResultOfAnalysisTitle, NoSolutionText(seconds, passTwoOff),
                    result.fromRegister ? kFromRegisterSuffix : "", byUser ? kStoppedByUserSuffix : "");
}

// The line played to reach the position repeats it: the run ends before it starts.
TProblemReport& StopOnRepetition(const TRunServices& run, TProblemReport& report) {
    if (run.reporter) run.reporter->Report(kPositionRepetitionTitle, kPositionRepetitionText);
    report.result = "stopped";
    report.outcome = EngineEndLine(false, kPositionRepetitionTitle);
    return report;
}

bool ExpectsOrder(const ProblemEntry& entry) {
    return entry.m_answerKind == AnswerKind::ExpectedSort ||
           entry.m_answerKind == AnswerKind::ExpectedSortOnly;
}

// The expected order agrees when the solver's order of White's first moves begins with it.
void CompareFirstMoveOrder(const ProblemEntry& entry, const TChessboard& root, int language,
                           TProblemReport& report) {
    const std::vector<TMove> order = FirstMoveOrder(root, PreferredFirstMoves(entry, language));
    for (const TMove& m : order) report.firstMoveOrder.push_back(AnswerMoveText(root, m));
    report.match = order.size() >= entry.m_vAnswer.size() &&
                   std::equal(entry.m_vAnswer.begin(), entry.m_vAnswer.end(), order.begin());
}

void Solve(const ProblemEntry& entry, const TSolvingTask& task, const TSolveSettings& settings,
           const TOptions& options, CRunRegister& runRegister, std::atomic<uint64_t>* progress,
           TProblemReport& report) {
    const CSolvingRunScope run(entry.m_nNumber, BruteForce(entry, settings) == TBruteForce::Full);
    const CCurrentProblemScope current(entry.m_sDescription, static_cast<int>(entry.m_nNumber),
                                       WriteFen(task.position), task.nPlies);
    std::optional<CTablebaseLookup> lookup;
    if (settings.tablebase)
        lookup.emplace(*settings.tablebase, runRegister, task.position,
                       TablebaseLevels(entry, task.position, settings, options));
    const TPassRunResult result = RunProblem(entry, task, settings, options, runRegister, progress);
    const TAvailableData available = AvailableAfterRun(entry, settings, lookup);
    if (!result.error.empty()) throw ChessException(result.error);
    Describe(task.position, result, report);
    report.outcome = fmt::format("{}\n{}", EngineEndLine(!result.stopped, report.result),
                                 RunOutcomeText(entry.m_nNumber, result.keys.size(), ""));
    if (result.stopped && settings.timeLimitSeconds > 0) {
        report.outcome += '\n';
        report.outcome += TimeLimitHitText(settings.timeLimitSeconds);
    }
    AddRunTexts(entry, settings, result, report);
    const bool allSolutions = SolutionCount(entry, settings) == TSolutionCount::All;
    report.match = settings.after.empty() ? Matches(entry, result, allSolutions) : std::nullopt;
    if (!settings.after.empty()) return;  // the order and the checks concern the record's own position
    if (ExpectsOrder(entry)) CompareFirstMoveOrder(entry, task.position, options.m_nLanguageId, report);
    const TRunFacts facts{allSolutions, !result.stopped, &runRegister, available};
    report.failedChecks = FailedChecks(entry, task.position, facts);
}

}  // namespace

std::optional<std::string> PrepareRunRegister(const ProblemEntry& entry, const TOptions& options,
                                              std::unique_ptr<CRunRegister>& runRegister) {
    if (!runRegister || options.m_bClearRegisterOnStartSolving)
        runRegister = std::make_unique<CRunRegister>(options);
    return LoadReferencedRegister(entry, options, runRegister);
}

TProblemReport SolveProblem(const ProblemEntry& entry, const TSolveSettings& settings,
                            const TOptions& options, std::unique_ptr<CRunRegister>& runRegister,
                            std::atomic<uint64_t>* progress) {
    const std::optional<std::string> registerLoad = PrepareRunRegister(entry, options, runRegister);
    TProblemReport report = SolvePreparedProblem(entry, settings, options, *runRegister, progress);
    report.registerLoad = registerLoad;
    return report;
}

TProblemReport SolvePreparedProblem(const ProblemEntry& entry, const TSolveSettings& settings,
                                    const TOptions& options, CRunRegister& runRegister,
                                    std::atomic<uint64_t>* progress) {
    TProblemReport report;
    report.problem = entry.m_nNumber;
    report.stipulation =
        fmt::format("{}#{}", entry.m_type == ProblemType::Selfmate ? "s" : "", entry.StipulationMoves());
    if (entry.m_answerKind != AnswerKind::None) {
        report.expected.emplace();
        for (const TMove& m : entry.m_vAnswer)
            report.expected->push_back(AnswerMoveText(entry.m_position.board, m));
    }
    try {
        if (entry.m_type != ProblemType::Directmate)
            throw ChessException("Only mate problems (type=1) supported currently.");
        TSolvingTask task = MakeSolvingTask(entry);
        if (!settings.after.empty()) PlayMovesAfter(task, settings.after);
        task.position.problem = &task.root;
        if (AnalysedLineRepeats(task)) return StopOnRepetition(settings.run, report);
        if (entry.m_answerKind == AnswerKind::ExpectedSortOnly) {
            report.result = "order only";
            CompareFirstMoveOrder(entry, task.position, options.m_nLanguageId, report);
        } else {
            Solve(entry, task, settings, options, runRegister, progress, report);
        }
    } catch (const ChessException& e) {
        report.result = "error";
        report.error = e.what();
        report.outcome = RunOutcomeText(entry.m_nNumber, 0, e.what());
    }
    return report;
}

}  // namespace moremate
