#include "engine/passes/passes.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "core/fen.h"
#include "core/notation.h"
#include "core/validation.h"
#include "engine/run/run_services.h"
#include "tests/support/positions.h"

namespace moremate {
namespace {

// Every line that does not mate at once is doubtful: no key of more than one move is found.
class CDoubtEverything : public CHeuristicHook {
  public:
    uint32_t Check(const TChessboard&) override { return SH_AREKINGSNEAR; }
};

// A #3 with the single key Rh1-h3.
constexpr const char* kOneKey = "8/8/8/8/R7/2k5/8/4K2R w K - 0 1";
// A #3 with four keys: Kd2-c1, Kd2-c2, Kd2-c3, Qe3-b6.
constexpr const char* kFourKeys = "8/8/8/8/P7/3PQ3/3K4/k7 w";

struct CRun {
    TPassRunRequest request;
    CRunRegister reg{1u << 16};
    std::vector<THeuristicSet> hookSets;  // the sets the factory was asked for
    std::vector<std::string> output;

    CRun(const char* fen, uint32_t mask, bool doubtEverything) {
        EXPECT_TRUE(ReadFen(fen, request.position));
        PrepareForSolving(request.position, 5, true);
        request.state.set.mask = mask;
        request.state.quickMode = false;
        request.environment.store = &reg;
        request.runRegister = &reg;
        request.hooks = [this, doubtEverything](const THeuristicSet& set) -> std::unique_ptr<CHeuristicHook> {
            hookSets.push_back(set);
            if (!doubtEverything || set.mask == 0) return nullptr;
            return std::make_unique<CDoubtEverything>();
        };
        request.relaxation.clock = [t = int64_t{0}]() mutable { return t += 5000; };  // slow passes
        request.output = [this](const std::string& line) { output.push_back(line); };
    }

    TPassRunResult Run() { return RunPasses(request, nullptr); }
};

std::vector<std::string> PassLabels(const TPassRunResult& r) {
    std::vector<std::string> labels;
    for (const TPassSummary& p : r.passes) labels.push_back(p.pass);
    return labels;
}

std::vector<std::string> KeyTexts(const TChessboard& root, const TPassRunResult& r) {
    std::vector<std::string> keys;
    for (const TPassKey& k : r.keys) keys.push_back(MoveToText(root, k.key.move) + "@" + k.pass);
    std::sort(keys.begin(), keys.end());
    return keys;
}

using Labels = std::vector<std::string>;

TEST(Passes, RelaxedPassesThenPassTwoFindsWhatHeuristicsCut) {
    CRun run(kOneKey, SH_AREKINGSNEAR, true);
    const TPassRunResult r = run.Run();
    EXPECT_EQ(PassLabels(r), (Labels{"1", "2"}));
    EXPECT_EQ(r.passes[0].result, kDoubtful);
    EXPECT_EQ(r.passes[0].setText, "SH_AREKINGSNEAR");
    EXPECT_EQ(KeyTexts(run.request.position, r), (Labels{"Rh1-h3@2"}));
    EXPECT_EQ(r.result, kMate);
    ASSERT_EQ(run.hookSets.size(), 2u);
    EXPECT_EQ(run.hookSets[1].mask, 0u);
    ASSERT_EQ(run.output.size(), 3u);
    EXPECT_EQ(run.output[0], "> Safe Mode (Quick Mode heuristics is OFF)");
    EXPECT_TRUE(run.output[1].starts_with("Pass 1, 100.0% ")) << run.output[1];
    EXPECT_NE(run.output[1].find(" SH:1h,TR:"), std::string::npos) << run.output[1];
    EXPECT_TRUE(run.output[2].starts_with("Pass 2, 100.0% ")) << run.output[2];
}

TEST(Passes, FindForcedMateModesGetAPassEach) {
    CRun run(kOneKey, SH_FINDFORCEDMATE, true);
    run.request.state.set.params.ffm.mode = run.request.state.set.params.ffm.initialMode = kFfmThreat1;
    run.request.state.set.params.ffm.relaxations = 2;
    const TPassRunResult r = run.Run();
    EXPECT_EQ(PassLabels(r), (Labels{"1", "1b", "1c", "2"}));
    ASSERT_EQ(run.hookSets.size(), 4u);
    EXPECT_EQ(run.hookSets[0].params.ffm.mode, kFfmThreat1);
    EXPECT_EQ(run.hookSets[1].params.ffm.mode, kFfmThreat1Plus);
    EXPECT_EQ(run.hookSets[2].params.ffm.mode, kFfmThreat2);
    EXPECT_EQ(run.hookSets[3].mask, 0u);
    EXPECT_EQ(r.passes[1].setText, "SH_FINDFORCEDMATE(#1+)");
}

// Without relaxation no pass 1b; without pass 2 the doubtful result stands. A problem without
// heuristics has pass 2 only, even when pass 2 is switched off.
TEST(Passes, RelaxationAndPassTwoSwitches) {
    const struct {
        uint32_t mask;
        bool relaxation, pass2;
        Labels labels;
    } cases[] = {
        {SH_AREKINGSNEAR | SH_SWEEPINGWHITEROOK, true, true, {"1", "1b", "2"}},
        {SH_AREKINGSNEAR | SH_SWEEPINGWHITEROOK, false, true, {"1", "2"}},
        {SH_AREKINGSNEAR | SH_SWEEPINGWHITEROOK, false, false, {"1"}},
        {0, true, false, {"2"}},
    };
    for (const auto& c : cases) {
        CRun run(kOneKey, c.mask, true);
        run.request.state.relaxationAllowed = c.relaxation;
        run.request.state.pass2Allowed = c.pass2;
        const TPassRunResult r = run.Run();
        EXPECT_EQ(PassLabels(r), c.labels);
        EXPECT_EQ(r.result, c.labels.back() == "2" ? kMate : kDoubtful);
        EXPECT_EQ(r.keys.empty(), c.labels.back() != "2");
    }
}

// A counted number of solutions ends the series in the pass that finds the last; all solutions run
// every pass, later passes adding no key twice, unless STOPRELAXHEURISTICSONFIRSTSOLUTION sends the
// run straight to pass 2 after a solution.
TEST(Passes, SolutionCountsAndStopOnFirstSolution) {
    using enum TSolutionCount;
    constexpr uint32_t kTwo = SH_AREKINGSNEAR | SH_SWEEPINGWHITEROOK;
    // clang-format off
    const struct { uint32_t mask; TSolutionCount solutions; bool stopRelax; Labels labels; size_t keys; } cases[] = {
        {kTwo, Single, false, {"1"}, 1}, {SH_AREKINGSNEAR, UpTo2, false, {"1"}, 2},
        {SH_AREKINGSNEAR, UpTo3, false, {"1"}, 3}, {SH_AREKINGSNEAR, UpTo4, false, {"1"}, 4},
        {kTwo, All, false, {"1", "1b", "2"}, 4}, {kTwo, All, true, {"1", "2"}, 4},
    };
    // clang-format on
    const Labels keys = {"Kd2-c1@1", "Kd2-c2@1", "Kd2-c3@1", "Qe3-b6@1"};  // all found in pass 1
    for (const auto& c : cases) {
        CRun run(kFourKeys, c.mask, false);
        run.request.solutions = c.solutions;
        run.request.state.stopRelaxOnFirstSolution = c.stopRelax;
        const TPassRunResult r = run.Run();
        EXPECT_EQ(PassLabels(r), c.labels);
        EXPECT_EQ(KeyTexts(run.request.position, r), Labels(keys.begin(), keys.begin() + c.keys));
        ASSERT_FALSE(r.keys.empty());
        EXPECT_EQ(r.keys[0].setText,
                  c.mask == kTwo ? "SH_AREKINGSNEAR, SH_SWEEPINGWHITEROOK" : "SH_AREKINGSNEAR");
    }
}

TEST(Passes, BruteForceAndHybridBruteForce) {
    {
        CRun run(kFourKeys, SH_AREKINGSNEAR, false);
        run.request.bruteForce = TBruteForce::Full;
        const TPassRunResult r = run.Run();
        EXPECT_EQ(PassLabels(r), (Labels{"2"}));
        EXPECT_EQ(r.keys.size(), 4u);
        ASSERT_EQ(run.hookSets.size(), 1u);
        EXPECT_EQ(run.hookSets[0].mask, 0u);
    }
    {  // Phase 1 finds one key with heuristics, phase 2 the others without.
        CRun run(kFourKeys, SH_AREKINGSNEAR, false);
        run.request.bruteForce = TBruteForce::Hybrid;
        const TPassRunResult r = run.Run();
        EXPECT_EQ(PassLabels(r), (Labels{"1", "2"}));
        ASSERT_EQ(r.keys.size(), 4u);
        EXPECT_EQ(r.keys[0].pass, "1");
        EXPECT_EQ(r.keys[3].pass, "2");
        const auto has = [&run](const char* line) {
            return std::find(run.output.begin(), run.output.end(), line) != run.output.end();
        };
        EXPECT_TRUE(has(
            "  - now running the first (heuristical) phase of hybrid brute force (no solution found yet)"));
        EXPECT_TRUE(
            has("  - now running the second (brute force) phase of hybrid brute force (at least one solution "
                "already found)"));
    }
}

TEST(Passes, RunRegisterDropsTheDoubtfulLinesOfARelaxedSet) {
    CRun run(kOneKey, SH_AREKINGSNEAR | SH_SWEEPINGWHITEROOK, true);
    CRunRegister& reg = run.reg;
    std::vector<size_t> configurationsAtPassStart;
    const auto hooks = run.request.hooks;
    run.request.hooks = [&](const THeuristicSet& set) {
        configurationsAtPassStart.push_back(reg.WhiteToMove().DoubtfulConfigurations().size() +
                                            reg.BlackToMove().DoubtfulConfigurations().size());
        return hooks(set);
    };
    const TPassRunResult r = run.Run();
    EXPECT_EQ(PassLabels(r), (Labels{"1", "1b", "2"}));
    EXPECT_EQ(configurationsAtPassStart, (std::vector<size_t>{0, 0, 0}));
    // Pass 1 did store doubtful lines under its set: its status line counts them.
    EXPECT_EQ(run.output[1].find("TR:0(0)"), std::string::npos) << run.output[1];
    EXPECT_EQ(KeyTexts(run.request.position, r), (Labels{"Rh1-h3@2"}));
}

// A doubtful line answers for the half-moves it was found with and fewer; a deeper try searches
// the position again. Proofs of the run stay what they are whatever the pass's set.
TEST(Passes, RunRegisterTiesDoubtfulLinesToTheirHalfMoves) {
    CRunRegister reg{1u << 12};
    uint8_t squares[64] = {};
    squares[0] = kWhite | kKing;
    squares[63] = kBlack | kKing;
    reg.SetConfiguration(SH_AREKINGSNEAR, 0);
    reg.Store(squares, 7, kDoubtful);
    EXPECT_EQ(reg.Lookup(squares, 7), kDoubtful);
    EXPECT_EQ(reg.Lookup(squares, 5), kDoubtful);
    EXPECT_EQ(reg.Lookup(squares, 9), kUnknownResult);
    reg.Store(squares, 9, kDoubtful);
    EXPECT_EQ(reg.Lookup(squares, 9), kDoubtful);
    reg.SetConfiguration(0, 0);
    EXPECT_EQ(reg.Lookup(squares, 7), kUnknownResult);
}

// The sea snake step forces safe mode during the run, and says so.
TEST(Passes, SeaSnakeForcesSafeMode) {
    CRun run(kOneKey, SH_SEASNAKE | SH_AREKINGSNEAR, true);
    run.Run();
    EXPECT_NE(std::find(run.output.begin(), run.output.end(), "> Safe Mode forced by engine"),
              run.output.end());
}

TPassRunRequest NoMateInTwo(CRunRegister& reg) {
    TPassRunRequest request;
    request.position = test::Problem("8/8/Q7/8/2K5/5P2/8/2k5 w - - 0 1", 3);
    request.environment.store = &reg;
    request.runRegister = &reg;
    return request;
}

TEST(RunServices, RootProvenInTheRegisterIsNotSearched) {
    CRunRegister reg(20'000);
    const TPassRunResult searched = RunPassesWithServices(NoMateInTwo(reg), {});
    EXPECT_FALSE(searched.fromRegister);
    EXPECT_EQ(searched.result, kNoMate);
    EXPECT_GT(searched.nodes, 0u);

    const TPassRunRequest request = NoMateInTwo(reg);
    reg.Store(request.position.squares, request.position.movesLeft, kNoMate);
    const TPassRunResult known = RunPassesWithServices(request, {});
    EXPECT_TRUE(known.fromRegister);
    EXPECT_EQ(known.result, kNoMate);
    EXPECT_EQ(known.nodes, 0u);
    EXPECT_TRUE(known.passes.empty());
}

}  // namespace
}  // namespace moremate
