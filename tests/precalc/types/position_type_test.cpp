#include "precalc/types/position_type.h"

#include <gtest/gtest.h>

#include <random>

#include "core/chess_exception.h"
#include "core/fen.h"
#include "precalc/types/precalc_files.h"
#include "tests/support/temp_folder.h"

namespace moremate {
namespace {

TChessboard Board(const std::string& fen) {
    TChessboard board;
    EXPECT_TRUE(ReadFen(fen, board));
    return board;
}

TEST(PrecalcType, DescriptionsAreReadInAnyOrderAndKeptCanonical) {
    struct {
        const char* text;
        const char* canonical;
        int pieces;
        bool pawns;
        uint64_t placements;
    } const cases[] = {
        {"KQk", "KQk", 1, false, 32 * 64 * 64},          {"kKq", "Kkq", 1, false, 32 * 64 * 64},
        {"KPkp", "KPkp", 2, true, 32 * 64 * 48 * 48},    {"kpPK", "KPkp", 2, true, 32 * 64 * 48 * 48},
        {"KNBk", "KBNk", 2, false, 32 * 64 * 64 * 64},   {"KRRk", "KRRk", 2, false, 32 * 64 * 2016},
        {"KPPPk", "KPPPk", 3, true, 32ull * 64 * 17296}, {"Kk", "Kk", 0, false, 32 * 64},
    };
    for (const auto& c : cases) {
        const TPrecalcType type = TPrecalcType::Parse(c.text);
        EXPECT_EQ(type.Description(), c.canonical);
        EXPECT_EQ(type.PieceCount(), c.pieces) << c.text;
        EXPECT_EQ(type.HasPawns(), c.pawns) << c.text;
        EXPECT_EQ(type.PlacementCount(), c.placements) << c.text;
    }
    for (const char* bad : {"KQ", "KKk", "KQk+", "KQQQQk", "KXk", "", "KQRBNk"})
        EXPECT_THROW(TPrecalcType::Parse(bad), ChessException) << bad;
}

TEST(PrecalcType, WhiteKingOnTheRightHalfIsMirrored) {
    const TPrecalcType type = TPrecalcType::Parse("KQk");
    struct {
        const char* fen;
        uint64_t whitePart;
    } const cases[] = {{"k7/8/8/8/8/8/8/7K", 0}, {"7K/8/8/8/8/8/8/k7", 28}, {"K7/8/8/8/8/8/8/7k", 28},
                       {"8/8/8/8/8/8/8/K6k", 0}, {"8/8/8/8/8/8/8/3K3k", 3}, {"8/8/8/8/8/8/8/4K2k", 3}};
    for (const auto& c : cases) {
        TChessboard b = Board(c.fen);
        b.squares[MakeSquare(4, 4)] = kWhite | kQueen;
        EXPECT_EQ(type.IndexOf(b.squares) % 32, c.whitePart) << c.fen;
    }
    // A position and its mirror image share the index.
    const TChessboard left = Board("8/8/2k5/8/8/1Q6/8/2K5"), right = Board("8/8/5k2/8/8/6Q1/8/5K2");
    EXPECT_EQ(type.IndexOf(left.squares), type.IndexOf(right.squares));
}

TEST(PrecalcType, PlacementsAndIndexesAreInverse) {
    std::mt19937_64 random(7);
    for (const char* text : {"KQk", "KRRk", "KPkp", "KBNk", "KPPk", "KQkr", "KRRRk", "KPPPk"}) {
        const TPrecalcType type = TPrecalcType::Parse(text);
        for (int n = 0; n < 20000; ++n) {
            const uint64_t i = random() % type.PlacementCount();
            uint8_t squares[64];
            if (!type.PlacementAt(i, squares)) continue;
            ASSERT_EQ(type.IndexOf(squares), i) << text;
        }
    }
}

TEST(PrecalcType, SuccessorsAreCapturesAndPromotions) {
    struct {
        const char* type;
        std::vector<std::string> successors;
    } const cases[] = {
        {"KQk", {"Kk"}},
        {"KPk", {"Kk", "KQk", "KRk", "KBk", "KNk"}},
        {"KRkp", {"Kkp", "KRk", "KRkq", "KRkr", "KRkb", "KRkn"}},
    };
    for (const auto& c : cases) {
        std::vector<std::string> found;
        for (const TPrecalcType& t : TPrecalcType::Parse(c.type).Successors())
            found.push_back(t.Description());
        EXPECT_EQ(found, c.successors) << c.type;
    }
}

TEST(PrecalcFiles, BlackLettersAreMarkedUpToTheFirstPlus) {
    struct {
        const char* description;
        const char* name;
    } const cases[] = {
        {"KQk", "KQk_"},      {"KQkr", "KQk_r_"},     {"KPkp", "KPk_p_"}, {"KQ(kr)", "KQ(kr)"},
        {"KQk+r", "KQk_+r_"}, {"KQk+rb", "KQk_+r_b"}, {"Kk?x", "Kk_?x_"}, {"K(Q)k(n)+p", "K(Q)k_(n)+p_"}};
    for (const auto& c : cases) EXPECT_EQ(MarkedBaseName(c.description), c.name);
}

TEST(PrecalcFiles, TypeFilesLieInTheSubfolderOfTheirPieceCountWhenItExists) {
    testing::CTempFolder folder;
    const TPrecalcType pawns = TPrecalcType::Parse("KPkp"), plain = TPrecalcType::Parse("KQk");
    const TPrecalcType custom = TPrecalcType::Parse("KQk", true);
    EXPECT_EQ(TypeFile(folder.Path(), plain, TStorageKind::kLz4), folder.Path() / "Precalc/KQk_.precalc.lz4");
    std::filesystem::create_directories(folder.Path() / "Precalc/4pieces+pawns");
    EXPECT_EQ(TypeFile(folder.Path(), pawns, TStorageKind::kPackedLzw, true),
              folder.Path() / "Precalc/4pieces+pawns/KPk_p_.precalc.details.packed.lzw");
    EXPECT_EQ(TypeFile(folder.Path(), custom, TStorageKind::kPackedLz4),
              folder.Path() / "CustomPrecalc/KQk_.precalc.packed.lz4");
    EXPECT_EQ(TypeFile(folder.Path(), plain, TStorageKind::kPlain), folder.Path() / "Precalc/KQk_.precalc");
    EXPECT_EQ(StorageKindNamed("rle"), TStorageKind::kRunLength);
    EXPECT_THROW(StorageKindNamed("zip"), ChessException);
}

}  // namespace
}  // namespace moremate
