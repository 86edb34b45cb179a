#include <gtest/gtest.h>

#include <random>

#include "core/chess_exception.h"
#include "core/fen.h"
#include "precalc/types/position_type.h"
#include "precalc/types/precalc_files.h"

namespace moremate {
namespace {

TEST(CustomType, DescriptionsGiveTheirPiecesSquaresAndIndexSpace) {
    struct {
        const char* text;
        uint64_t placements;  // with one side to move
        bool restricted;
        const char* standard;
        const char* baseName;
    } const cases[] = {
        {"KQk", 32 * 64 * 64, false, "KQk", "KQk_"},
        {"KXk", 32 * 64 * 8, true, "KPk", "KXk_"},                 // white pawn on rank 2
        {"Kkx", 32 * 64 * 8, true, "Kkp", "Kk_x_"},                // black pawn on rank 7
        {"KX(4)k", 32 * 64 * 8, true, "KPk", "KX(4)k_"},           // pawn on rank 4, file indexed
        {"KR(1)k", 32 * 64 * 8, true, "KRk", "KR(1)k_"},           // symmetric: mirrored
        {"KRk+pa7", 64 * 64 * 64 * 1, true, "KRkp", "KRk_+p_a7"},  // not symmetric: no mirror
        {"KRk+p?7", 32 * 64 * 64 * 8, true, "KRkp", "KRk_+p_?7"},
        {"KN(a1,h1)N(a8,h8)k", 32 * 64 * 2 * 2, true, "KNNk", "KN(a1,h1)N(a8,h8)k_"},
        {"KQ(e)k", 64 * 64 * 8, true, "KQk", "KQ(e)k_"},
        {"KQk+q", 32 * 64 * 64 * 64, false, "KQkq", "KQk_+q_"},
        {"KP(a?,h?)k", 32 * 64 * 12, true, "KPk", "KP(a?,h?)k_"},
    };
    for (const auto& c : cases) {
        const TPrecalcType type = TPrecalcType::Parse(c.text, true);
        EXPECT_TRUE(type.IsCustom());
        EXPECT_EQ(type.Description(), c.text);
        EXPECT_EQ(type.PlacementCount(), c.placements) << c.text;
        EXPECT_EQ(type.IsRestricted(), c.restricted) << c.text;
        EXPECT_EQ(type.Standard().Description(), c.standard) << c.text;
        EXPECT_EQ(MarkedBaseName(type.Description()), c.baseName) << c.text;
        EXPECT_EQ(TypeFolderName(type).begin()->string(), "CustomPrecalc");
    }
}

TEST(CustomType, MalformedDescriptionsSayWhatIsWrong) {
    struct {
        const char* text;
        const char* reason;
    } const cases[] = {
        {"KQ", "one \"K\" and one \"k\" are needed"},
        {"KQk(", "\"(\" without \")\""},
        {"KQ()k", "no square between \"(\" and \")\""},
        {"KQ(z)k", "a square, a file (a-h) or a rank (1-8) expected at position 4"},
        {"KQk+", "a piece letter must follow \"+\""},
        {"K?k", "\"?\" stands for any file or rank of a square, as in a? or ?7"},
        {"KJk", "unknown piece letter \"J\""},
        {"K(a1)k", "the kings may stand anywhere"},
        {"KP(8)k", "a pawn stands on ranks 2 to 7"},
        {"KXPk", "like pieces with squares in common must both stand anywhere"},
        {"KQQQQk", "at most 5 men"},
    };
    for (const auto& c : cases) {
        try {
            TPrecalcType::Parse(c.text, true);
            ADD_FAILURE() << c.text;
        } catch (const ChessException& e) {
            EXPECT_EQ(std::string(e.what()), std::string(kUnknownTypeText) + c.text + " (" + c.reason + ")");
        }
    }
    // Disjoint squares of like pieces are fine; a standard description keeps to plain letters.
    EXPECT_NO_THROW(TPrecalcType::Parse("KXP(3456)k", true));
    EXPECT_THROW(TPrecalcType::Parse("KXk"), ChessException);
}

TEST(CustomType, PlacementsAndIndexesAreInverseAndStayOnTheirSquares) {
    std::mt19937_64 random(5);
    for (const char* text :
         {"KXk", "KRk+pa7", "KN(a1,h1)N(a8,h8)k", "KQ(e)k", "KXP(3456)k", "KQk+q", "Kkx+R(1)"}) {
        const TPrecalcType type = TPrecalcType::Parse(text, true);
        int placed = 0;
        for (int n = 0; n < 20000; ++n) {
            const uint64_t i = random() % type.PlacementCount();
            uint8_t squares[64];
            if (!type.PlacementAt(i, squares)) continue;
            ++placed;
            ASSERT_TRUE(type.ContainsPosition(squares)) << text << " " << i;
            ASSERT_EQ(type.IndexOf(squares), i) << text;
        }
        EXPECT_GT(placed, 1000) << text;
    }
}

TEST(CustomType, PositionsOutsideTheSquaresAreNotOfTheType) {
    struct {
        const char* type;
        const char* fen;
        bool contained;
    } const cases[] = {
        {"KRk+pa7", "4k3/p7/8/8/8/8/8/R3K3", true},
        {"KRk+pa7", "4k3/8/p7/8/8/8/8/R3K3", false},  // the pawn has moved
        {"KRk+pa7", "4k3/p7/8/8/8/8/8/4K3", false},   // other material
        {"KXk", "4k3/8/8/8/8/8/3P4/4K3", true},
        {"KXk", "4k3/8/8/8/8/3P4/8/4K3", false},
        {"KXP(3456)k", "4k3/8/8/8/8/3P4/P7/4K3", true},
        {"KXP(3456)k", "4k3/8/8/8/8/8/P2P4/4K3", false},
    };
    for (const auto& c : cases) {
        TChessboard board;
        ASSERT_TRUE(ReadFen(c.fen, board));
        EXPECT_EQ(TPrecalcType::Parse(c.type, true).ContainsPosition(board.squares), c.contained)
            << c.type << " " << c.fen;
    }
}

}  // namespace
}  // namespace moremate
