#include "passes.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <optional>

#include <fmt/format.h>

#include "engine/heuristics/position_type.h"
#include "engine/lookup/region_hook.h"
#include "engine/state/run_control.h"
#include "region_first_moves.h"

namespace moremate {
namespace {

constexpr const char* kHybridFirstPhaseText =
    "  - now running the first (heuristical) phase of hybrid brute force (no solution found yet)";
constexpr const char* kHybridSecondPhaseText =
    "  - now running the second (brute force) phase of hybrid brute force (at least one solution already "
    "found)";

// The regions solved before the passes, as the run's figures name them, and the line that says
// how many first moves they proved.
constexpr const char* kRegionsPhaseLabel = "regions";
constexpr std::string_view kRegionFirstMovesText = "  - first moves proven by the regions, tried first: ";

size_t Limit(TSolutionCount count) {
    return count == TSolutionCount::All ? SIZE_MAX : static_cast<size_t>(count);
}

// The proof-number pass's own time, 0 for "until it settles or the run's time is up". Alone, or
// for a single solution, it has the whole time limit: the heuristic passes rarely find a key where
// it did not. Looking for more keys, it leaves a quarter of the limit to the passes that settle
// the first moves it left open. Without a limit it has two minutes, unless it runs alone.
int64_t ProofNumberBudgetMs(TProofNumberMode mode, size_t limit, int seconds) {
    constexpr int64_t kWithoutLimitMs = 120000;
    if (mode == TProofNumberMode::Only) return 0;
    if (seconds == 0) return kWithoutLimitMs;
    return limit == 1 ? 0 : int64_t{seconds} * 750;
}

// One series of passes: what the passes share and what they have found so far.
class CPassSeries {
  public:
    CPassSeries(TPassRunRequest& request, std::atomic<bool>* stop)
        : m_request(request), m_stop(stop), m_start(std::chrono::steady_clock::now()) {}

    // Pass 1 and its relaxed successors, until relaxation ends or the series must stop.
    void RunHeuristicPasses(size_t limit) {
        TPassState& state = m_request.state;
        PreparePassOne(state);
        while (!RunPass(1, limit)) {
            if (state.stopRelaxOnFirstSolution && !m_result.keys.empty()) return;
            const uint32_t mask = state.set.mask, word = state.parameterWord;
            const bool wasForced = state.safeModeForced;
            const bool next = TryRelaxSpecialHeuristics(state, m_request.relaxation);
            RemoveDoubtful(mask, word);
            if (state.safeModeForced && !wasForced) Say(QuickModeLine(state));
            if (!next) return;
        }
    }

    // The proof-number pass; true when it settled the problem (the key limit reached, or every
    // first move settled).
    bool RunProofNumberPass(size_t limit) {
        const int seconds = RemainingSeconds();
        if (seconds < 0) return m_bDone = m_result.stopped = true;
        if (CRunControl* control = m_request.environment.control)
            control->PassStarted(-1, kProofNumberPassLabel, 0);
        if (m_request.runRegister) m_request.runRegister->SetConfiguration(0, 0);
        TProofNumberPassRequest pass;
        pass.position = m_request.position;
        pass.keyLimit = limit;
        pass.preferredFirstMoves = m_request.preferredFirstMoves;
        pass.tableBytes = m_request.proofNumberTableBytes;
        pass.threads = ProofNumberPassThreads(m_request.threads);
        pass.environment = m_request.environment;
        pass.timeLimitSeconds = seconds;
        pass.budgetMs = ProofNumberBudgetMs(m_request.proofNumber, limit, seconds);
        TProofNumberPassResult r = moremate::RunProofNumberPass(pass, m_stop);
        for (const TKey& key : r.keys) m_result.keys.push_back({key, kProofNumberPassLabel, ""});
        m_result.passes.push_back({kProofNumberPassLabel, "", r.result, r.nodes, r.msec});
        m_result.nodes += r.nodes;
        m_result.result = r.result;
        m_result.stopped = r.stopped;
        Say(StatusLine(-1, kProofNumberPassLabel, 0, r.nodes));
        const bool settled = r.complete || r.stopped;
        m_result.proofNumber = std::move(r);
        return m_bDone = settled;
    }

    // Pass 2 without heuristics.
    void RunPassTwo(size_t limit) {
        m_request.state.set = THeuristicSet{};
        m_request.state.parameterWord = 0;
        m_request.state.step = 0;
        RunPass(2, limit);
    }

    void SetHybridPhase(uint8_t phase) { m_byPhase = phase; }
    // A phase of the run outside the passes, with its figures.
    void AddSummary(const TPassSummary& summary) {
        m_result.passes.push_back(summary);
        m_result.nodes += summary.nodes;
    }
    bool Done() const { return m_bDone; }
    bool Interrupted() const { return m_result.stopped || !m_result.error.empty(); }
    size_t KeyCount() const { return m_result.keys.size(); }
    void Say(const std::string& line) const {
        if (m_request.output) m_request.output(line);
    }

    TPassRunResult Finish() {
        if (!m_result.keys.empty()) m_result.result = kMate;
        return std::move(m_result);
    }

  private:
    // Runs one pass with the state's set; true when the series must end (stop, time, count, error).
    bool RunPass(int number, size_t limit) {
        const TPassState& state = m_request.state;
        if (RemainingSeconds() < 0) return m_bDone = m_result.stopped = true;
        const std::string label = fmt::format("{}{}", number, PassLetter(state.step));
        const std::string setText = PassSetText(state, &m_request.position);
        const std::unique_ptr<CHeuristicHook> hook = m_request.hooks ? m_request.hooks(state.set) : nullptr;
        if (CRunControl* control = m_request.environment.control)
            control->PassStarted(number, PassLetter(state.step), state.set.mask);
        if (m_request.runRegister)
            m_request.runRegister->SetConfiguration(state.set.mask, state.parameterWord);
        TSolveRequest pass;
        pass.position = m_request.position;
        pass.allSolutions = limit == SIZE_MAX;
        pass.maxKeys = limit == SIZE_MAX ? 0 : static_cast<int>(limit - m_result.keys.size());
        pass.preferredFirstMoves = m_request.preferredFirstMoves;
        pass.timeLimitSeconds = RemainingSeconds();
        pass.environment = m_request.environment;
        pass.environment.heuristics = hook.get();
        ConfigurePassThreads(pass, m_request.threads, state, m_byPhase,
                             !state.relaxationAllowed && !state.pass2Allowed);
        for (const TPassKey& key : m_result.keys) pass.knownKeys.push_back(key.key.move);
        const TSolveResult r = Solve(pass, m_stop);
        for (const TKey& key : r.keys) m_result.keys.push_back({key, label, setText});
        m_result.passes.push_back({label, setText, r.result, r.nodes, r.msec});
        m_result.nodes += r.nodes;
        m_result.result = r.result;
        m_result.stopped = r.stopped;
        m_result.error = r.error;
        Say(StatusLine(number, PassLetter(state.step), state.set.mask, r.nodes));
        m_bDone = r.stopped || !r.error.empty() || m_result.keys.size() >= limit;
        return m_bDone;
    }

    std::string StatusLine(int number, const std::string& letter, uint32_t mask, uint64_t nodes) const {
        CRunRegister* reg = m_request.runRegister;
        const int fill = reg ? reg->FillPercent() : 0;
        const int configurations = reg ? static_cast<int>(reg->WhiteToMove().DoubtfulConfigurations().size() +
                                                          reg->BlackToMove().DoubtfulConfigurations().size())
                                       : 0;
        return PassStatusLine(number, letter, "", 100.0, static_cast<long long>(nodes), mask, fill,
                              configurations);
    }

    // The doubtful lines of a set that no later pass uses.
    void RemoveDoubtful(uint32_t mask, uint32_t word) {
        if (!m_request.runRegister || mask == 0) return;
        if (mask == m_request.state.set.mask && word == m_request.state.parameterWord) return;
        m_request.runRegister->WhiteToMove().RemoveDoubtful(mask, word);
        m_request.runRegister->BlackToMove().RemoveDoubtful(mask, word);
    }

    // Seconds left of the series' limit; 0 when there is no limit, negative when it has run out.
    int RemainingSeconds() const {
        if (m_request.timeLimitSeconds <= 0) return 0;
        const auto spent = std::chrono::steady_clock::now() - m_start;
        const int left = m_request.timeLimitSeconds -
                         static_cast<int>(std::chrono::duration_cast<std::chrono::seconds>(spent).count());
        return left > 0 ? left : -1;
    }

    TPassRunRequest& m_request;
    std::atomic<bool>* m_stop;
    std::chrono::steady_clock::time_point m_start;
    TPassRunResult m_result;
    bool m_bDone = false;
    uint8_t m_byPhase = kNotHybrid;
};

// The passes with heuristics, then pass 2 unless the series is over or pass 2 is not allowed.
// A problem without heuristics runs pass 2 alone, whatever the flags say.
void RunStandard(CPassSeries& series, const TPassRunRequest& request, size_t limit) {
    const TPassState& state = request.state;
    const bool proofNumber =
        request.proofNumber == TProofNumberMode::Only ||
        (request.proofNumber == TProofNumberMode::Auto && ProofNumberPassFirst(request.position));
    if (proofNumber && (series.RunProofNumberPass(limit) || request.proofNumber == TProofNumberMode::Only))
        return;
    const bool heuristics = state.set.mask != 0;
    if (heuristics) series.RunHeuristicPasses(limit);
    if (!series.Done() && (!heuristics || state.pass2Allowed)) series.RunPassTwo(limit);
}

// Whether the run uses regions: asked to, or left to the engine for a blocked position.
bool UsesRegions(const TPassRunRequest& request) {
    return request.regions == TRegionMode::On ||
           (request.regions == TRegionMode::Auto && RegionsDecide(request.position));
}

// The regions after the first moves are solved first, with a share of the time, and the first
// moves they prove go first in every pass. Then regions are only looked up (left to the engine,
// or once a first move is proven): solving the regions of every node the passes meet holds their
// proofs up.
void PreferRegionFirstMoves(CPassSeries& series, TPassRunRequest& request, CRegionSolver& solver,
                            CRegionHook& hook) {
    constexpr int64_t kWithoutLimitMs = 60000;
    const int64_t budgetMs =
        request.timeLimitSeconds > 0 ? int64_t{request.timeLimitSeconds} * 500 : kWithoutLimitMs;
    if (CRunControl* control = request.environment.control) control->PassStarted(-1, kRegionsPhaseLabel, 0);
    const auto start = std::chrono::steady_clock::now();
    std::vector<TMove> first = RegionFirstMoves(request.position, solver, budgetMs, Limit(request.solutions));
    const int64_t msec =
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start)
            .count();
    series.AddSummary(
        {kRegionsPhaseLabel, "", first.empty() ? kUnknownResult : kMate, solver.Stats().nodes, msec});
    hook.SetSolving(request.regions == TRegionMode::On && first.empty());
    if (first.empty()) return;
    series.Say(fmt::format("{}{}", kRegionFirstMovesText, first.size()));
    for (const TMove& m : request.preferredFirstMoves)
        if (std::find(first.begin(), first.end(), m) == first.end()) first.push_back(m);
    request.preferredFirstMoves = std::move(first);
}

}  // namespace

TPassRunResult RunPasses(TPassRunRequest request, std::atomic<bool>* stop) {
    std::optional<CRegionSolver> regions;
    std::optional<CRegionHook> regionHook;
    if (UsesRegions(request)) {
        regions.emplace(TRegionLimits{}, stop);
        regionHook.emplace(*regions, request.environment.globalRegister);
        request.environment.globalRegister = &*regionHook;
    }
    request.relaxation.root = &request.position;
    request.state.passEndTimes[0] = RelaxationClockMs(request.relaxation);
    CPassSeries series(request, stop);
    series.Say(QuickModeLine(request.state));
    if (regions) PreferRegionFirstMoves(series, request, *regions, *regionHook);
    switch (request.bruteForce) {
        case TBruteForce::Full:
            series.RunPassTwo(SIZE_MAX);
            break;
        case TBruteForce::Hybrid:
            series.Say(kHybridFirstPhaseText);
            series.SetHybridPhase(kHybridFirstPhase);
            RunStandard(series, request, 1);
            if (series.KeyCount() > 0 && !series.Interrupted()) {
                series.Say(kHybridSecondPhaseText);
                series.SetHybridPhase(kHybridSecondPhase);
                series.RunPassTwo(SIZE_MAX);
            }
            break;
        case TBruteForce::Off:
            RunStandard(series, request, Limit(request.solutions));
            break;
    }
    TPassRunResult result = series.Finish();
    if (regions) result.regions = regions->Stats();
    return result;
}

std::string QuickModeLine(const TPassState& state) {
    if (state.safeModeForced) return "> Safe Mode forced by engine";
    if (state.safeMode || !state.quickMode) return "> Safe Mode (Quick Mode heuristics is OFF)";
    return "> Quick Mode implicit heuristics ON (see Options)";
}

std::string PassStatusLine(int number, const std::string& letter, const std::string& prefix, double percent,
                           long long count, uint32_t mask, int registerFill, int doubtfulConfigurations) {
    char line[160];
    const std::string pass = number < 0 ? letter : std::to_string(number) + letter;
    std::snprintf(line, sizeof line, "Pass %s, %s%0.1f%% %lld SH:%xh,TR:%d(%d)     \r", pass.c_str(),
                  prefix.c_str(), percent, count, mask, registerFill, doubtfulConfigurations);
    return line;
}

std::string SolutionCountText(TSolutionCount count) {
    switch (count) {
        case TSolutionCount::Single:
            return "* Search for single solution";
        case TSolutionCount::All:
            return "* Search for all solutions";
        default:
            return "* Search for no more than " + std::to_string(static_cast<int>(count)) + " solutions";
    }
}

}  // namespace moremate
