#include "problems/annotations/position_search.h"

#include <gtest/gtest.h>

#include "tests/support/positions.h"

namespace moremate {
namespace {

// White: Ke1, Qd3, Rh1, Ra1 (rooks by squares), pawn b2; Black: Kh8, knight g8, pawn h7.
const char* const kFen = "6nk/7p/8/8/8/3Q4/1P6/R3K2R w - - 0 1";

TEST(PositionSearch, PiecesInProblemOrder) {
    EXPECT_EQ(PositionPiecesText(test::Board(kFen)), "wKe1 wQd3 wRa1 wRh1 wPb2 bKh8 bNg8 bPh7");
    EXPECT_EQ(PositionPiecesText(test::Board("8/8/8/8/8/8/8/k6K w - - 0 1")), "wKh1 bKa1");
}

TEST(PositionSearch, QueryEscaping) {
    EXPECT_EQ(PercentEncoded("wKe1 bKh8"), "wKe1%20bKh8");
    EXPECT_EQ(PercentEncoded("STIP='#3' a-z_.~"), "STIP%3D%27%233%27%20a-z_.~");
    EXPECT_EQ(PercentEncoded("\xC3\xA4&"), "%C3%A4%26");
}

// Every database gets its address; PDB counts the pieces and reads the stipulation.
TEST(PositionSearch, AddressPerDatabase) {
    const TChessboard board = test::Board(kFen);
    EXPECT_EQ(
        PositionSearchLink(ProblemDatabase::Pdb, board, 3),
        "https://pdb.dieschwalbe.de/search.jsp?expression=WPIECES%3D5%20AND%20BPIECES%3D3%20AND%20STIP%3D%27%"
        "233%27");
    const std::string pieces = "wKe1%20wQd3%20wRa1%20wRh1%20wPb2%20bKh8%20bNg8%20bPh7";
    EXPECT_EQ(PositionSearchLink(ProblemDatabase::Yacpdb, board, 3),
              "https://www.yacpdb.org/?search=" + pieces);
    EXPECT_EQ(PositionSearchLink(ProblemDatabase::Meson, board, 3),
              "https://www.bstephen.me.uk/meson/meson.pl?search=" + pieces);
    EXPECT_EQ(
        PositionSearchLink(ProblemDatabase::Albrecht, board, 3),
        "https://www.dieschwalbe.de/albrecht/search5.php?spalten=Stellung&search=" + pieces + "&type=search");
    EXPECT_EQ(PositionSearchLink(ProblemDatabase::Gameknot, board, 3), "");
}

}  // namespace
}  // namespace moremate
