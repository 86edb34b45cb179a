#include "engine/passes/passes.h"

#include <gtest/gtest.h>

#include <unistd.h>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <regex>
#include <string>
#include <vector>

#include "core/attacks.h"
#include "core/fen.h"
#include "core/notation.h"
#include "core/validation.h"
#include "engine/passes/relaxation.h"
#include "engine/run/run_services.h"
#include "engine/state/run_control.h"
#include "registers/register_autosave.h"
#include "tests/support/positions.h"
#include "tests/support/temp_folder.h"

namespace moremate {
namespace {

using testing::CTempFolder;

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

// Regions asked for: solved before the passes, which then find the same keys, those the regions
// proved first. Left to the engine, a position whose pawns are free gets none.
TEST(Passes, RegionsBeforeThePasses) {
    constexpr const char* kRookMate = "7k/8/5K2/8/8/8/8/R7 w - - 0 1";
    CRun off(kRookMate, 0, false), on(kRookMate, 0, false);
    off.request.solutions = on.request.solutions = TSolutionCount::All;
    on.request.regions = TRegionMode::On;
    const TPassRunResult without = off.Run(), with = on.Run();
    EXPECT_EQ(PassLabels(with), (Labels{"regions", "2"}));
    EXPECT_EQ(KeyTexts(on.request.position, with), KeyTexts(off.request.position, without));
    ASSERT_TRUE(with.regions.has_value());
    EXPECT_GT(with.regions->regions, 0u);
    EXPECT_TRUE(std::any_of(on.output.begin(), on.output.end(), [](const std::string& line) {
        return line.starts_with("  - first moves proven by the regions, tried first: ");
    }));
    CRun left(kFourKeys, 0, false);
    left.request.regions = TRegionMode::Auto;
    const TPassRunResult plain = left.Run();
    EXPECT_EQ(PassLabels(plain), (Labels{"2"}));
    EXPECT_FALSE(plain.regions.has_value());
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
    TChessboard position;
    position.squares[0] = kWhite | kKing;
    position.squares[63] = kBlack | kKing;
    DerivePieceBits(position);
    reg.SetConfiguration(SH_AREKINGSNEAR, 0);
    reg.Store(position, 7, kDoubtful);
    EXPECT_EQ(reg.Lookup(position, 7), kDoubtful);
    EXPECT_EQ(reg.Lookup(position, 5), kDoubtful);
    EXPECT_EQ(reg.Lookup(position, 9), kUnknownResult);
    reg.Store(position, 9, kDoubtful);
    EXPECT_EQ(reg.Lookup(position, 9), kDoubtful);
    reg.SetConfiguration(0, 0);
    EXPECT_EQ(reg.Lookup(position, 7), kUnknownResult);
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
    reg.Store(request.position, request.position.movesLeft, kNoMate);
    const TPassRunResult known = RunPassesWithServices(request, {});
    EXPECT_TRUE(known.fromRegister);
    EXPECT_EQ(known.result, kNoMate);
    EXPECT_EQ(known.nodes, 0u);
    EXPECT_TRUE(known.passes.empty());
}

// The flag a time limit raised ends that run only: the next problem is searched; a stop the user
// asked for ends every run after it.
TEST(RunServices, TimeLimitOfOneRunDoesNotStopTheNext) {
    CRunRegister reg(20'000);
    CRunControl control;
    TRunServices services;
    services.control = &control;
    control.StopFlag()->store(true);  // as the deadline of the run before leaves it
    const TPassRunResult next = RunPassesWithServices(NoMateInTwo(reg), services);
    EXPECT_FALSE(next.stopped);
    EXPECT_EQ(next.result, kNoMate);

    CRunRegister fresh(20'000);
    control.Stop();
    const TPassRunResult afterStop = RunPassesWithServices(NoMateInTwo(fresh), services);
    EXPECT_TRUE(afterStop.stopped);
}

// Two threads search past a tick while the tick saves the registers they fill; a clock a minute
// on at every reading makes every tick's save due.
TEST(ConcurrentRunAutoSave, TicksSaveTheRegistersWhileThreadsSearch) {
    CTempFolder folder;
    CRunRegister reg(1u << 18);
    TAutoSaveDescriptor descriptor;
    descriptor.m_sDescription = "Rook and pawns";
    CRegisterAutoSave autoSave({1, 0, true, folder.Path()}, descriptor,
                               [t = int64_t{0}]() mutable { return t += 60'000; });
    autoSave.Attach(reg.WhiteToMove(), &reg.BlackToMove());
    TPassRunRequest request;
    request.position = test::Directmate("8/8/8/3k4/8/8/PP6/R3K3 w", 12);  // longer than the limit
    request.environment.store = &reg;
    request.runRegister = &reg;
    request.threads.threads = 2;
    request.timeLimitSeconds = 2;
    TRunServices services;
    services.autoSave = &autoSave;
    EXPECT_TRUE(RunPassesWithServices(request, services).stopped);
    EXPECT_EQ(autoSave.LastError(), "");
    EXPECT_GT(std::filesystem::file_size(autoSave.FilePath()), 0u);
    EXPECT_EQ(ReadAutoSaveDescriptor(autoSave.FilePath().string() + ".ini").m_sDescription, "Rook and pawns");
}

// Black Kh8 walled in by Rg8 (immobile), Bf8 and pawns g7 (pinned), h7; White Ke1, Qa1, Bh1. #5.
const TChessboard kCornered = test::Directmate("5brk/6pp/8/8/8/8/8/Q3K2B w", 8);
// Black king alone in the middle; White Ke1, Ra1, pawns a2, b2. #12.
const TChessboard kOpen = test::Directmate("8/8/8/3k4/8/8/PP6/R3K3 w", 12);
// A single white rook. #12.
const TChessboard kLoneRook = test::Directmate("8/8/8/3k4/8/8/8/R3K3 w", 12);

std::vector<std::string> Lines(const std::string& path) {
    std::ifstream in(path);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

TRelaxationEnvironment Env(const TChessboard& root, int64_t passEnd = 1'000'000) {
    TRelaxationEnvironment env;
    env.root = &root;
    env.clock = [passEnd] { return passEnd; };
    return env;
}

TPassState State(uint32_t mask) {
    TPassState s;
    s.set.mask = mask;
    return s;
}

void SetFfm(TPassState& s, uint8_t mode, uint8_t relaxations) {
    s.set.Add(SH_FINDFORCEDMATE);
    s.set.params.ffm.mode = s.set.params.ffm.initialMode = mode;
    s.set.params.ffm.relaxations = relaxations;
}

TEST(Relaxation, FixedOrderOverASetWithEveryKindOfStep) {
    TPassState s =
        State(SH_SWEEPINGWHITEROOK | SH_ZUGZWANG | SH_SEASNAKE | SH_ONECOLORPLAYPOSSIBLE |
              SH_KEEPKINGNEARCORNER | SH_DONTLEAVEMAINDIAGONAL | SH_KEYWHITEFIGURE | SH_KEEPKINGONTHEEDGE |
              SH_DONTLETBLACKQUEENCHECKTWICE | SH_DONTLETPROMOTEDQUEENMOVE | SH_DONTLETFIGUREUNBLOCK |
              SH_SINGLEQUEENMATE | SH_DONTLOSEANYFIGURES | SH_ASSERTBLACKKINGSURROUNDED |
              SH_SKIPWORSTWHITEMOVES | SH_SAVEQUEENROOK | SH_AREKINGSNEAR | SH_3MOVESTOMATE);
    SetFfm(s, kFfmThreat1, 1);
    THeuristicParameters& p = s.set.params;
    p.colourMode = TColourMode::WhiteSquaresOnly, p.kingMode = TKingMode::Strict;
    p.keyWhiteFigure = 28;  // e4, empty: the key figure test fails
    p.blockedFigures[0] = 62, p.blockedCount = 1, p.loseFiguresPawns = 1, p.surroundedStrict = true;

    uint32_t m = s.set.mask;
    const auto drop = [&m](uint32_t bits) { return m &= ~bits; };
    // FFM "#1+", FFM gone (steps used up, the pass was slow), rules 5 to 13, STRICT -> ALMOST_STRICT,
    // the edge -> "surrounded", 16, 17, "EFF", 19, 20, strict cleared, 21, 24, 25 one by one, the rest.
    // clang-format off
    const std::vector<uint32_t> expected = {
        m, drop(SH_FINDFORCEDMATE), drop(SH_SWEEPINGWHITEROOK), drop(SH_ZUGZWANG), drop(SH_SEASNAKE),
        drop(SH_ONECOLORPLAYPOSSIBLE), drop(SH_KEEPKINGNEARCORNER), drop(SH_DONTLEAVEMAINDIAGONAL),
        drop(SH_KEYWHITEFIGURE), m, drop(SH_KEEPKINGONTHEEDGE), drop(SH_DONTLETBLACKQUEENCHECKTWICE),
        drop(SH_DONTLETPROMOTEDQUEENMOVE), m, drop(SH_SINGLEQUEENMATE), drop(SH_DONTLOSEANYFIGURES), m,
        drop(SH_ASSERTBLACKKINGSURROUNDED), drop(SH_DONTLETFIGUREUNBLOCK), drop(SH_SKIPWORSTWHITEMOVES),
        drop(SH_SAVEQUEENROOK), drop(SH_AREKINGSNEAR), 0,
    };
    // clang-format on
    // Parameters changed by the steps that keep the mask, and the flags of the sea snake step.
    const std::map<size_t, std::function<bool()>> checks = {
        {0, [&p] { return p.ffm.mode == kFfmThreat1Plus; }},
        {4, [&s] { return s.safeMode && s.safeModeForced; }},
        {5, [&p] { return p.colourMode == TColourMode::None; }},
        {9, [&p] { return p.kingMode == TKingMode::AlmostStrict; }},
        {10, [&p] { return p.kingMode == TKingMode::Off; }},
        {13, [&p] { return p.dlfuEff; }},
        {16, [&p] { return !p.surroundedStrict; }},
    };
    const TRelaxationEnvironment env = Env(kCornered);
    for (size_t i = 0; i < expected.size(); ++i) {
        const bool next = TryRelaxSpecialHeuristics(s, env);
        ASSERT_EQ(s.set.mask, expected[i]) << "step " << i + 1;
        EXPECT_EQ(next, expected[i] != 0);
        EXPECT_EQ(s.step, i + 1);
        EXPECT_EQ(s.parameterWord, ParameterWord(s.set));
        if (const auto it = checks.find(i); it != checks.end()) {
            EXPECT_TRUE(it->second()) << "step " << i + 1;
        }
    }
    EXPECT_EQ(s.parameterWord, 0u);
}

TEST(Relaxation, EachCallChangesOneThing) {
    const TRelaxationEnvironment env = Env(kCornered);
    {  // Only SH_AREKINGSNEAR: empty after one step, so pass 2 follows.
        TPassState s = State(SH_AREKINGSNEAR);
        EXPECT_FALSE(TryRelaxSpecialHeuristics(s, env));
        EXPECT_EQ(s.set.mask, 0u);
        EXPECT_EQ(PassLetter(s.step), "b");
    }
    {  // Relaxation off clears the set without a step.
        TPassState s = State(SH_AREKINGSNEAR | SH_SWEEPINGWHITEROOK);
        s.relaxationAllowed = false;
        EXPECT_FALSE(TryRelaxSpecialHeuristics(s, env));
        EXPECT_EQ(s.set.mask, 0u);
        EXPECT_EQ(s.step, 0);
    }
    {  // A sub-problem takes its parent's relaxed set; alone it has nothing to relax.
        TPassState parent = State(SH_AREKINGSNEAR | SH_SWEEPINGWHITEROOK);
        TPassState child = State(SH_CAPTUREKNIGHT);
        child.subProblem = true;
        EXPECT_FALSE(TryRelaxSpecialHeuristics(child, env));
        EXPECT_EQ(child.set.mask, SH_CAPTUREKNIGHT);
        child.parent = &parent;
        EXPECT_TRUE(TryRelaxSpecialHeuristics(child, env));
        EXPECT_EQ(child.set.mask, SH_AREKINGSNEAR);
        EXPECT_EQ(parent.step, 1);
        EXPECT_EQ(child.step, 0);
    }
}

TEST(Relaxation, PendingDynamicDlfuAndTheKeyFigureToggle) {
    const TRelaxationEnvironment env = Env(kCornered);
    TPassState off = State(SH_AREKINGSNEAR | SH_SWEEPINGWHITEROOK);
    off.pendingDynamicDlfu = true;
    off.dynamicDlfuAllowed = false;
    TryRelaxSpecialHeuristics(off, env);
    EXPECT_EQ(off.set.mask, SH_AREKINGSNEAR);

    TPassState s = State(SH_AREKINGSNEAR);
    s.set.params.blockedFigures[0] = 62;
    s.set.params.blockedCount = 1;
    s.pendingDynamicDlfu = true;  // added, then the rules go on: "EFF" is the step
    EXPECT_TRUE(TryRelaxSpecialHeuristics(s, env));
    EXPECT_EQ(s.set.mask, SH_AREKINGSNEAR | SH_DONTLETFIGUREUNBLOCK);
    EXPECT_TRUE(s.set.params.dlfuEff && s.dynamicDlfuActive && !s.pendingDynamicDlfu);
    // The rook on g8 cannot move: the engine's DLFU stays one step, losing its dynamic flags.
    EXPECT_TRUE(TryRelaxSpecialHeuristics(s, env));
    EXPECT_EQ(s.set.mask, SH_AREKINGSNEAR | SH_DONTLETFIGUREUNBLOCK);
    EXPECT_FALSE(s.dynamicDlfuActive);
    EXPECT_TRUE(TryRelaxSpecialHeuristics(s, env));
    EXPECT_EQ(s.set.mask, SH_AREKINGSNEAR);

    s.set.Add(SH_DONTLETFIGUREUNBLOCK);
    s.pendingDlfuKeyToggle = true;  // DLFU -> key figure is the step
    EXPECT_TRUE(TryRelaxSpecialHeuristics(s, env));
    EXPECT_EQ(s.set.mask, SH_AREKINGSNEAR | SH_KEYWHITEFIGURE);
    s.set.params.dlfuEff = false;
    s.pendingDlfuKeyToggle = true;  // key figure -> DLFU, then "EFF" is the step
    EXPECT_TRUE(TryRelaxSpecialHeuristics(s, env));
    EXPECT_EQ(s.set.mask, SH_AREKINGSNEAR | SH_DONTLETFIGUREUNBLOCK);
    EXPECT_TRUE(s.set.params.dlfuEff);

    // An engine DLFU whose squares hold no black figure any more goes at once (step 11).
    TPassState gone = State(SH_DONTLETFIGUREUNBLOCK | SH_DONTLEAVEMAINDIAGONAL);
    gone.set.params.blockedFigures[0] = 28;
    gone.set.params.blockedCount = 1;
    gone.dynamicDlfuActive = true;
    TryRelaxSpecialHeuristics(gone, env);
    EXPECT_EQ(gone.set.mask, SH_DONTLEAVEMAINDIAGONAL);
    EXPECT_FALSE(gone.dynamicDlfuActive);
}

TEST(Relaxation, PositionDependentAlternatives) {
    {  // A key figure that still stands (the queen on a1) waits until the STRICT king is relaxed.
        TPassState s = State(SH_KEYWHITEFIGURE | SH_KEEPKINGONTHEEDGE);
        s.set.params.keyWhiteFigure = 0;
        s.set.params.kingMode = TKingMode::Strict;
        TryRelaxSpecialHeuristics(s, Env(kCornered));
        EXPECT_EQ(s.set.mask, SH_KEYWHITEFIGURE | SH_KEEPKINGONTHEEDGE);
        EXPECT_EQ(s.set.params.kingMode, TKingMode::AlmostStrict);  // Black has pawns
        s.almostStrictToSurrounded = false;
        TryRelaxSpecialHeuristics(s, Env(kCornered));
        EXPECT_EQ(s.set.mask, SH_KEEPKINGONTHEEDGE);
    }
    {  // STRICT without black pawns goes to the plain edge; off the edge it becomes "surrounded".
        TPassState s = State(SH_KEEPKINGONTHEEDGE);
        s.set.params.kingMode = TKingMode::Strict;
        TryRelaxSpecialHeuristics(s, Env(kOpen));
        EXPECT_EQ(s.set.mask, SH_ASSERTBLACKKINGSURROUNDED);
        EXPECT_EQ(s.set.params.kingMode, TKingMode::Off);
    }
    {  // The edge rule: ext.edge with "incl.corner" near the corner, or "surrounded" when marked.
        TPassState s = State(SH_KEEPKINGONTHEEDGE);
        TryRelaxSpecialHeuristics(s, Env(kCornered));
        EXPECT_EQ(s.set.mask, SH_KEEPKINGWITHINEXTEDGE);
        EXPECT_TRUE(s.set.params.inclCorner);
        TPassState marked = State(SH_KEEPKINGONTHEEDGE);
        marked.edgeToSurrounded = true;
        TryRelaxSpecialHeuristics(marked, Env(kCornered));
        EXPECT_EQ(marked.set.mask, SH_ASSERTBLACKKINGSURROUNDED);
    }
    {  // Ext.edge: "strict" first; with few pieces "surrounded" takes its place.
        TPassState s = State(SH_KEEPKINGWITHINEXTEDGE);
        s.set.params.edgeStrict = true;
        TryRelaxSpecialHeuristics(s, Env(kOpen));
        EXPECT_EQ(s.set.mask, SH_KEEPKINGWITHINEXTEDGE);
        EXPECT_FALSE(s.set.params.edgeStrict);
        TPassState many = s;
        TryRelaxSpecialHeuristics(s, Env(kOpen));
        EXPECT_EQ(s.set.mask, SH_ASSERTBLACKKINGSURROUNDED);
        TryRelaxSpecialHeuristics(many, Env(kCornered));
        EXPECT_EQ(many.set.mask, 0u);
    }
    {  // "incl.pawns" with more white pawns than black ones: the pawns are let go first.
        TPassState s = State(SH_DONTLOSEANYFIGURES);
        s.set.params.loseFiguresPawns = 1;
        EXPECT_TRUE(TryRelaxSpecialHeuristics(s, Env(kOpen)));
        EXPECT_EQ(s.set.params.loseFiguresPawns, 0);
        EXPECT_FALSE(TryRelaxSpecialHeuristics(s, Env(kOpen)));
    }
    {  // Rules the problem does not mark relaxable wait for the last step.
        TPassState s =
            State(SH_DONTLETBLACKQUEENCHECKTWICE | SH_DONTLETPROMOTEDQUEENMOVE | SH_SINGLEQUEENMATE);
        s.queenCheckRelaxable = s.promotedQueenRelaxable = false;
        TryRelaxSpecialHeuristics(s, Env(kOpen));
        EXPECT_EQ(s.set.mask, SH_DONTLETBLACKQUEENCHECKTWICE | SH_DONTLETPROMOTEDQUEENMOVE);
        TryRelaxSpecialHeuristics(s, Env(kOpen));
        EXPECT_EQ(s.set.mask, SH_DONTLETPROMOTEDQUEENMOVE);
        EXPECT_FALSE(TryRelaxSpecialHeuristics(s, Env(kOpen)));
    }
}

std::vector<uint8_t> FfmModes(TPassState s, const TRelaxationEnvironment& env) {
    std::vector<uint8_t> modes{s.set.params.ffm.mode};
    while (TryRelaxSpecialHeuristics(s, env) && s.set.Has(SH_FINDFORCEDMATE))
        modes.push_back(s.set.params.ffm.mode);
    return modes;
}

TEST(Relaxation, FindForcedMateModeSteps) {
    TPassState two = State(0);
    SetFfm(two, kFfmThreat1, 2);
    EXPECT_EQ(FfmModes(two, Env(kOpen)), (std::vector<uint8_t>{kFfmThreat1, kFfmThreat1Plus, kFfmThreat2}));
    // One white piece besides the king: "#1+" is passed over.
    EXPECT_EQ(FfmModes(two, Env(kLoneRook)), (std::vector<uint8_t>{kFfmThreat1, kFfmThreat2}));
    // Steps used up at "#2": a short problem with the king on the edge gets "#2+" first.
    TPassState atTwo = State(0);
    SetFfm(atTwo, kFfmThreat2, 0);
    EXPECT_EQ(FfmModes(atTwo, Env(kCornered)), (std::vector<uint8_t>{kFfmThreat2, kFfmThreat2Plus}));
    EXPECT_EQ(FfmModes(atTwo, Env(kOpen)), (std::vector<uint8_t>{kFfmThreat2}));
    // "-Custom": the custom count, then the whole cycle again with the default count.
    TPassState custom = State(0);
    SetFfm(custom, kFfmThreat1, 0);
    custom.set.params.ffm.custom = true;
    custom.ffmCustomRelaxations = 1;
    EXPECT_EQ(FfmModes(custom, Env(kOpen)),
              (std::vector<uint8_t>{kFfmThreat1, kFfmThreat1Plus, kFfmThreat1}));
}

TEST(Relaxation, PreliminaryAndOtherHeuristics) {
    TPassState s = State(SH_KEEPKINGONTHEEDGE | SH_ASSERTBLACKKINGSURROUNDED | SH_AREKINGSNEAR);
    SetFfm(s, kFfmThreat1, 0);
    s.set.params.ffm.preliminary = true;
    const THeuristicSet full = s.set;
    PreparePassOne(s);
    EXPECT_EQ(s.set.mask, SH_FINDFORCEDMATE | SH_KEEPKINGWITHINEXTEDGE | SH_AREKINGSNEAR);
    EXPECT_TRUE(TryRelaxSpecialHeuristics(s, Env(kOpen)));
    EXPECT_EQ(s.set.mask, full.mask);
    EXPECT_FALSE(s.set.params.ffm.preliminary);

    // "-WithOtherHeuristics" adds what the position type check chooses, once.
    TPassState other = State(0);
    SetFfm(other, kFfmThreat1, 0);
    other.set.params.ffm.withOtherHeuristics = 1;
    EXPECT_TRUE(TryRelaxSpecialHeuristics(other, Env(kCornered)));
    EXPECT_EQ(other.set.mask, SH_FINDFORCEDMATE | SH_KEEPKINGONTHEEDGE | SH_3MOVESTOMATE);
    EXPECT_EQ(other.set.params.kingMode, TKingMode::Strict);
    EXPECT_TRUE(TryRelaxSpecialHeuristics(other, Env(kCornered)));
    EXPECT_EQ(other.set.mask, SH_KEEPKINGONTHEEDGE | SH_3MOVESTOMATE);
}

TEST(Relaxation, TimeDependentStepNearTheLimit) {
    // The time the pass took, the FFM mode after the step (0: FFM taken out), the line logged, if any.
    // clang-format off
    const struct { int64_t calcTime; uint8_t modeAfter; const char* logged; } cases[] = {
        {799, kFfmThreat2Plus, nullptr}, {1201, 0, nullptr},
        {800, kFfmThreat2Plus, "calcTime=800 msec.; limit=1000 msec. (additional relaxation accepted)"},
        {1200, 0, "calcTime=1200 msec.; limit=1000 msec. (additional relaxation refused)"},
    };
    // clang-format on
    for (const auto& c : cases) {
        CTempFolder folder;
        TRelaxationEnvironment env = Env(kOpen, 5000 + c.calcTime);
        env.engineLogPath = folder.File("engine.log").string();
        TPassState s = State(SH_AREKINGSNEAR);
        SetFfm(s, kFfmThreat1Plus, 0);
        s.passEndTimes[0] = 5000;
        EXPECT_TRUE(TryRelaxSpecialHeuristics(s, env));
        EXPECT_TRUE(s.timeDependentReached);
        EXPECT_EQ(s.passEndTimes[1], 5000 + c.calcTime);
        EXPECT_EQ(s.set.Has(SH_FINDFORCEDMATE) ? s.set.params.ffm.mode : 0, c.modeAfter) << c.calcTime;
        const std::vector<std::string> lines = Lines(env.engineLogPath);
        if (!c.logged) {
            EXPECT_TRUE(lines.empty()) << c.calcTime;
            continue;
        }
        ASSERT_EQ(lines.size(), 1u);
        const std::regex line(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d, )" + std::to_string(getpid()) +
                              R"(: Time dependent relaxation near the limit: )");
        EXPECT_TRUE(std::regex_search(lines[0], line)) << lines[0];
        EXPECT_TRUE(lines[0].ends_with(c.logged)) << lines[0];
    }
}

TEST(Relaxation, TimeDependentModeAdvance) {
    TPassState s = State(0);
    SetFfm(s, kFfmCheckOnly, 0);
    TPassState queen = s;
    EXPECT_TRUE(TryRelaxSpecialHeuristics(s, Env(kOpen, 10)));
    EXPECT_EQ(s.set.params.ffm.mode, kFfmThreat1Plus);  // landed on "#1"
    // "CheckOnly" stays while Black has a queen: the heuristic goes.
    const TChessboard withQueen = test::Directmate("8/8/8/3k4/8/8/8/R3K2q w", 12);
    EXPECT_FALSE(TryRelaxSpecialHeuristics(queen, Env(withQueen, 10)));
    EXPECT_FALSE(queen.timeDependentReached);
    // The end time is stored once per step.
    TPassState twice = State(0);
    SetFfm(twice, kFfmThreat1, 0);
    twice.step = 1;
    twice.passEndTimes[2] = 2000;
    EXPECT_FALSE(TryRelaxSpecialHeuristics(twice, Env(kOpen, 10)));
    EXPECT_EQ(twice.passEndTimes[2], 2000);
}

TEST(Relaxation, LogWritesBeforeAndAfterLines) {
    CTempFolder folder;
    TRelaxationEnvironment env = Env(kOpen);
    env.log = true;
    env.logFolder = folder.Path().string();
    env.thread = -3;
    TPassState s = State(SH_AREKINGSNEAR | SH_SWEEPINGWHITEROOK);
    s.quickMode = false;
    TryRelaxSpecialHeuristics(s, env);
    const std::vector<std::string> lines = Lines(folder.File("TryRelaxSpecialHeuristics.log").string());
    ASSERT_EQ(lines.size(), 2u);
    const std::string time = R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d)";
    EXPECT_TRUE(
        std::regex_match(lines[0], std::regex(time + " BEFORE th=-3 SH_AREKINGSNEAR, SH_SWEEPINGWHITEROOK")))
        << lines[0];
    EXPECT_TRUE(std::regex_match(lines[1], std::regex(time + " AFTER  th=-3 SH_AREKINGSNEAR"))) << lines[1];
}

TEST(Relaxation, ShowPathText) {
    const TRelaxationEnvironment env = Env(kOpen);
    TPassState s = State(SH_AREKINGSNEAR | SH_SWEEPINGWHITEROOK | SH_ZUGZWANG);
    s.quickMode = false;
    EXPECT_EQ(RelaxationPathText(s, env),
              "Pass 1: SH_AREKINGSNEAR, SH_SWEEPINGWHITEROOK, SH_ZUGZWANG\n\nPass 1b: SH_AREKINGSNEAR, "
              "SH_ZUGZWANG\n\nPass 1c: SH_AREKINGSNEAR");
    EXPECT_EQ(s.set.mask, SH_AREKINGSNEAR | SH_SWEEPINGWHITEROOK | SH_ZUGZWANG);  // the copy is relaxed

    EXPECT_EQ(RelaxationPathText(State(0), env), "No heuristics selected.");
}

}  // namespace
}  // namespace moremate
