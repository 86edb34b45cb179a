#include "precalc/generator/generator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "core/chess_exception.h"
#include "core/fen.h"
#include "engine/search/mate_search.h"
#include "engine/search/precalc_hook.h"
#include "engine/search/proof_number_search.h"
#include "engine/search/proof_walk.h"
#include "engine/state/search_result.h"
#include "precalc/generator/lookahead.h"
#include "precalc/generator/partial_verification.h"
#include "precalc/generator/verification.h"
#include "precalc/global/find_mate.h"
#include "tests/support/positions.h"
#include "tests/support/temp_folder.h"

namespace moremate {
namespace {

// The small types every test here needs, generated once into a folder of their own.
class PrecalcData : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        s_pFolder = new testing::CTempFolder;
        s_pRegisters = new TGlobalRegisters;
        TGlobalRegisterSettings settings;
        settings.m_dataFolder = s_pFolder->Path();
        settings.m_bForceDiskAccess = false;
        settings.m_nQuotaBytes = 1ull << 30;
        s_pRegisters->Configure(settings, nullptr);
        TGenerationOptions options;
        options.m_nThreads = 2;
        for (const char* type : {"KQk", "KRk", "KPk"})
            EnsureTypeData(*s_pRegisters, TPrecalcType::Parse(type), options,
                           [](const TGenerationReport& r) { s_reports.push_back(r); });
    }
    static void TearDownTestSuite() {
        delete s_pRegisters;
        delete s_pFolder;
    }
    static const TGenerationReport& Report(const std::string& description) {
        for (const TGenerationReport& r : s_reports)
            if (r.m_sDescription == description) return r;
        throw std::runtime_error("not generated: " + description);
    }

    static testing::CTempFolder* s_pFolder;
    static TGlobalRegisters* s_pRegisters;
    static std::vector<TGenerationReport> s_reports;
};

testing::CTempFolder* PrecalcData::s_pFolder = nullptr;
TGlobalRegisters* PrecalcData::s_pRegisters = nullptr;
std::vector<TGenerationReport> PrecalcData::s_reports;

TEST_F(PrecalcData, LongestMatesAreThePublishedOnes) {
    EXPECT_EQ(Report("KQk").m_nLongestMate, 10);
    EXPECT_EQ(Report("KRk").m_nLongestMate, 16);
    EXPECT_EQ(Report("KPk").m_nLongestMate, 28);
    EXPECT_EQ(Report("KBk").m_nWhiteMates, 0u);
    EXPECT_EQ(Report("KNk").m_nWhiteMates, 0u);
    // The smaller types came first.
    EXPECT_LT(
        std::find_if(s_reports.begin(), s_reports.end(), [](auto& r) { return r.m_sDescription == "KQk"; }),
        std::find_if(s_reports.begin(), s_reports.end(), [](auto& r) { return r.m_sDescription == "KPk"; }));
}

TEST_F(PrecalcData, EveryStoredValueAgreesWithOneMoveAheadAndAWrongOneIsFound) {
    for (const char* type : {"KQk", "KRk", "KPk"}) {
        const TVerificationReport r =
            VerifyTypeData(*s_pRegisters, s_pRegisters->Require(TPrecalcType::Parse(type)), 2, false);
        EXPECT_EQ(r.m_nFaults, 0u) << type << (r.m_vFaults.empty() ? "" : r.m_vFaults[0]);
        EXPECT_EQ(r.m_nChecked, TypeIndexCount(TPrecalcType::Parse(type)));
    }
    // A wrong value is found and listed.
    const TPrecalcType type = TPrecalcType::Parse("KRk");
    std::vector<uint8_t> values = s_pRegisters->Require(type).Storage().Payload();
    TChessboard board;
    ASSERT_TRUE(ReadFen("8/8/8/8/8/2k5/8/K6R", board));
    const uint64_t i = type.IndexOf(board.squares);
    values[i] = static_cast<uint8_t>(values[i] + 1);
    TGlobalRegister broken(type, MakePlainStorage(values, 1));
    const TVerificationReport r = VerifyTypeData(*s_pRegisters, broken, 1, false);
    EXPECT_GE(r.m_nFaults, 1u);
    EXPECT_TRUE(std::filesystem::exists(r.m_faultFile));
}

// Sampled positions: the data and the ordinary search agree on mate within the stored length and
// on no mate one move shorter, with either side to move.
TEST_F(PrecalcData, TheSearchAgreesOnSampledPositions) {
    std::mt19937_64 random(11);
    TMateSearch search{TSearchEnvironment{}};
    for (const char* text : {"KQk", "KRk", "KPk"}) {
        const TPrecalcType type = TPrecalcType::Parse(text);
        const TGlobalRegister& reg = s_pRegisters->Require(type);
        int checked = 0;
        for (int n = 0; n < 4000 && checked < 60; ++n) {
            const bool white = n % 2 == 0;
            TChessboard board;
            if (!SetUpPlacement(type, random() % type.PlacementCount(), white, board)) continue;
            const int halfMoves = reg.HalfMovesToMate(board);
            if (halfMoves > 7) continue;  // the plain search stays quick
            const int budget = halfMoves >= 0 ? halfMoves : (white ? 5 : 4);
            board.movesLeft = board.movesAtStart = static_cast<int16_t>(budget);
            if (budget > 0) {
                EXPECT_EQ(search.FindForcedMate(board), halfMoves >= 0 ? kMate : kNoMate)
                    << WriteFen(board) << " " << budget;
            }
            if (halfMoves >= 2) {
                board.movesLeft = board.movesAtStart = static_cast<int16_t>(halfMoves - 2);
                EXPECT_EQ(search.FindForcedMate(board), kNoMate) << WriteFen(board);
            }
            ++checked;
        }
        EXPECT_EQ(checked, 60) << text;
    }
}

TEST_F(PrecalcData, TheHookSettlesWithinTheNodesHalfMoves) {
    CPrecalcHook hook(*s_pRegisters);
    TChessboard board;
    ASSERT_TRUE(ReadFen("8/8/8/8/8/2k5/8/K6R", board));  // White mates in 14
    struct {
        int halfMoves;
        uint8_t result;
    } const cases[] = {{27, kMate}, {29, kMate}, {25, kNoMate}, {3, kNoMate}};
    for (const auto& c : cases) {
        board.movesLeft = static_cast<int16_t>(c.halfMoves);
        uint8_t result = kUnknownResult;
        EXPECT_TRUE(hook.Settle(board, result));
        EXPECT_EQ(result, c.result) << c.halfMoves;
    }
    TChessboard other;
    ASSERT_TRUE(ReadFen("8/8/8/8/8/2k5/8/K5NR", other));  // no data for KRNk
    uint8_t result;
    EXPECT_FALSE(hook.Settle(other, result));
    // The search with the hook gives the same answer as without it.
    TSearchEnvironment env;
    env.globalRegister = &hook;
    TMateSearch withData(env), plain{TSearchEnvironment{}};
    for (const int halfMoves : {1, 3, 5, 7}) {
        const TChessboard start = test::Problem("8/8/8/8/8/k7/8/1R2K3 w", halfMoves);
        EXPECT_EQ(withData.FindForcedMate(start), plain.FindForcedMate(start)) << halfMoves;
    }
}

// The proof-number search settles its fresh nodes from the data and proves what the plain search
// proves, on a rook ending beyond its reach without data. The walk of its proof follows the data's
// quickest mate against the longest defence, one line down to the mate on the board, instead of
// every Black reply.
TEST_F(PrecalcData, TheProofNumberSearchSettlesFreshNodesAndItsWalkFollowsTheData) {
    CPrecalcHook hook(*s_pRegisters);
    TSearchEnvironment env;
    env.globalRegister = &hook;
    CProofNumberTable table(8 << 20);
    TProofNumberSearch proofs(env, table, nullptr);
    const TChessboard root = test::Problem("8/8/8/8/8/2k5/8/K6R w", 27);  // White mates in 14
    EXPECT_EQ(proofs.Prove(root), kMate);
    EXPECT_GT(proofs.Stats().precalcHits, 0u);
    CProofNumberTable again(8 << 20);
    TProofNumberSearch shorter(env, again, nullptr);
    EXPECT_EQ(shorter.Prove(test::Problem("8/8/8/8/8/2k5/8/K6R w", 25)), kNoMate);

    EXPECT_EQ(hook.MateDistance(root), 14);
    CProofWalk walk(proofs);
    ASSERT_TRUE(walk.Holds(root));
    EXPECT_LE(walk.Nodes(), 28u);
    TMoveList moves;
    GenerateLegalMoves(root, moves);
    const TMove* key = std::find_if(moves.begin(), moves.end(), [&](const TMove& m) {
        return hook.MateDistance(test::TestLine(root).Play(m).Now()) == 13;
    });
    ASSERT_NE(key, moves.end());
    const std::vector<TMove> line = walk.Line(root, *key);
    ASSERT_EQ(line.size(), 27u);
    test::TestLine played(root);
    for (size_t i = 0; i < line.size(); ++i)  // White's moves shorten the mate by one, Black's keep it
        EXPECT_EQ(hook.MateDistance(played.Play(line[i]).Now()), 13 - static_cast<int>(i / 2)) << i;
    EXPECT_TRUE(IsMate(played.Now()));
}

TEST_F(PrecalcData, FindMateByGlobalRegisterTriesEachMove) {
    TChessboard board;
    ASSERT_TRUE(ReadFen("8/8/8/8/8/k7/8/1R2K3", board));
    board.movesLeft = 9;
    const int halfMoves = s_pRegisters->Require(TPrecalcType::Parse("KRk")).HalfMovesToMate(board);
    ASSERT_GT(halfMoves, 1);
    const int n = (halfMoves + 1) / 2;
    EXPECT_TRUE(FindMateByGlobalRegister(*s_pRegisters, board, n));
    EXPECT_FALSE(FindMateByGlobalRegister(*s_pRegisters, board, n - 1));
    EXPECT_FALSE(FindMateByGlobalRegister(*s_pRegisters, board, n, ~0ull));  // every start square excluded
    board.movesLeft = 1;
    EXPECT_THROW(FindMateByGlobalRegister(*s_pRegisters, board, 2), std::runtime_error);
    TChessboard knight;
    ASSERT_TRUE(ReadFen("8/8/8/8/8/k7/8/1R2K2N", knight));
    knight.movesLeft = 3;
    try {
        FindMateByGlobalRegister(*s_pRegisters, knight, 2);
        ADD_FAILURE() << "no data for KRNk";
    } catch (const ChessException& e) {
        EXPECT_STREQ(e.what(), "No global register found for position type KRNk");
    }
}

TEST_F(PrecalcData, DataFilesReadBackInEveryForm) {
    const TPrecalcType type = TPrecalcType::Parse("KQk");
    TGlobalRegisters registers;
    TGlobalRegisterSettings settings;
    settings.m_dataFolder = s_pFolder->Path();
    settings.m_nQuotaBytes = 1ull << 30;
    for (const bool disk : {true, false}) {
        settings.m_bForceDiskAccess = disk;
        registers.Configure(settings, nullptr);
        TGlobalRegister& reg = registers.Require(type);
        EXPECT_EQ(reg.Storage().Form() == TStorageForm::kDiskAccess, disk);  // the test files are plain
        for (uint64_t i = 0; i < TypeIndexCount(type); i += 97)
            ASSERT_EQ(reg.HalfMovesAtIndex(i), s_pRegisters->Require(type).HalfMovesAtIndex(i));
    }
}

// A custom type is generated in its own index space, leaving it for the standard type when a
// piece goes where it may not stand, and holds the standard type's value at every placement.
TEST_F(PrecalcData, CustomTypesAgreeWithTheStandardTypeOfTheirMaterial) {
    TGenerationOptions options;
    options.m_nThreads = 2;
    for (const char* text : {"KXk", "KR(1)k", "KQ(e)k", "KP(a?,h?)k"}) {
        const TPrecalcType custom = TPrecalcType::Parse(text, true);
        const TGlobalRegister& reg = EnsureTypeData(*s_pRegisters, custom, options);
        EXPECT_TRUE(std::filesystem::exists(TypeFile(s_pFolder->Path(), custom, TStorageKind::kPlain)))
            << text;
        const TGlobalRegister& standard = s_pRegisters->Require(custom.Standard());
        uint64_t compared = 0;
        for (uint64_t i = 0; i < custom.PlacementCount(); ++i)
            for (const bool white : {true, false}) {
                TChessboard board;
                if (!SetUpPlacement(custom, i, white, board)) continue;
                ASSERT_EQ(reg.HalfMovesToMate(board), standard.HalfMovesToMate(board))
                    << text << " " << WriteFen(board);
                ++compared;
            }
        EXPECT_GT(compared, custom.PlacementCount() / 2) << text;
        const TVerificationReport r = VerifyTypeData(*s_pRegisters, s_pRegisters->Require(custom), 2, false);
        EXPECT_EQ(r.m_nFaults, 0u) << text << (r.m_vFaults.empty() ? "" : r.m_vFaults[0]);
    }
}

// Without the standard type's data, the search reaches a custom type of the material on disk for
// the positions it holds, and no register for the others.
TEST_F(PrecalcData, TheSearchFindsACustomTypeWhenTheStandardOneIsMissing) {
    const TPrecalcType custom = TPrecalcType::Parse("KR(1)k", true);
    EnsureTypeData(*s_pRegisters, custom, TGenerationOptions{});
    testing::CTempFolder folder;
    const std::filesystem::path file = TypeFile(folder.Path(), custom, TStorageKind::kPlain);
    std::filesystem::create_directories(file.parent_path());
    std::filesystem::copy_file(TypeFile(s_pFolder->Path(), custom, TStorageKind::kPlain), file);
    TGlobalRegisters registers;
    TGlobalRegisterSettings settings = s_pRegisters->Settings();
    settings.m_dataFolder = folder.Path();
    registers.Configure(settings, nullptr);

    const TChessboard onFirstRank = test::Board("8/8/8/8/8/2k5/8/R3K3 w - - 0 1");
    TGlobalRegister* reg = registers.Find(onFirstRank);
    ASSERT_NE(reg, nullptr);
    EXPECT_EQ(reg->Type().Description(), custom.Description());
    EXPECT_EQ(reg->HalfMovesToMate(onFirstRank),
              s_pRegisters->Require(custom.Standard()).HalfMovesToMate(onFirstRank));
    EXPECT_EQ(registers.Find(test::Board("8/8/8/8/R7/2k5/8/4K3 w - - 0 1")), nullptr);
}

// A stop ends the generation before the next type: the types done keep their files, the rest
// have none.
TEST_F(PrecalcData, AStopEndsTheGenerationBeforeTheNextType) {
    testing::CTempFolder folder;
    TGlobalRegisters registers;
    TGlobalRegisterSettings settings = s_pRegisters->Settings();
    settings.m_dataFolder = folder.Path();
    registers.Configure(settings, nullptr);
    std::atomic<bool> stop{false};
    TGenerationOptions options;
    options.m_pStop = &stop;
    std::vector<std::string> done;
    try {
        EnsureTypeData(registers, TPrecalcType::Parse("KPk"), options, [&](const TGenerationReport& r) {
            done.push_back(r.m_sDescription);
            stop = true;
        });
        ADD_FAILURE() << "the generation went on";
    } catch (const ChessException& e) {
        EXPECT_STREQ(e.what(), kGenerationStoppedText);
    }
    ASSERT_EQ(done.size(), 1u);
    for (const char* type : {"KQk", "KRk", "KBk", "KNk", "KPk"})
        EXPECT_EQ(
            std::filesystem::exists(TypeFile(folder.Path(), TPrecalcType::Parse(type), TStorageKind::kPlain)),
            done[0] == type)
            << type;
}

// What an interrupted generation of KPk may leave: the promotion types KQk and KRk are verified,
// KBk and KNk are missing, and KPk, on disk without them, cannot be checked. A stop set before
// the first type verifies nothing.
TEST_F(PrecalcData, PartialDataIsVerifiedAsFarAsItGoes) {
    const TPrecalcType pawn = TPrecalcType::Parse("KPk");
    std::vector<std::string> order;
    for (const TPrecalcType& type : TypesGeneratedFor(pawn)) order.push_back(type.Description());
    std::ranges::sort(order.begin(), order.end() - 1);
    EXPECT_EQ(order, (std::vector<std::string>{"KBk", "KNk", "KQk", "KRk", "KPk"}));

    testing::CTempFolder folder;
    for (const char* type : {"KQk", "KRk", "KPk"}) {
        const TPrecalcType t = TPrecalcType::Parse(type);
        const std::filesystem::path file = TypeFile(folder.Path(), t, TStorageKind::kPlain);
        std::filesystem::create_directories(file.parent_path());
        std::filesystem::copy_file(TypeFile(s_pFolder->Path(), t, TStorageKind::kPlain), file);
    }
    TGlobalRegisters registers;
    TGlobalRegisterSettings settings = s_pRegisters->Settings();
    settings.m_dataFolder = folder.Path();
    registers.Configure(settings, nullptr);
    const TPartialVerification result = VerifyPartialData(registers, pawn, 2, false);
    ASSERT_EQ(result.m_vVerified.size(), 2u);
    for (const auto& [description, report] : result.m_vVerified) {
        EXPECT_TRUE(description == "KQk" || description == "KRk") << description;
        EXPECT_EQ(report.m_nFaults, 0u) << description;
        EXPECT_GT(report.m_nChecked, 0u) << description;
    }
    std::vector<std::string> missing = result.m_vMissing;
    std::ranges::sort(missing);
    EXPECT_EQ(missing, (std::vector<std::string>{"KBk", "KNk"}));
    EXPECT_EQ(result.m_vUnchecked, std::vector<std::string>{"KPk"});
    EXPECT_FALSE(result.m_bStopped);

    const std::atomic<bool> stop{true};
    const TPartialVerification stopped = VerifyPartialData(registers, pawn, 2, false, &stop);
    EXPECT_TRUE(stopped.m_bStopped);
    EXPECT_TRUE(stopped.m_vVerified.empty());
}

}  // namespace
}  // namespace moremate
