#include "problems/annotations/foreign_problem.h"

#include <gtest/gtest.h>

#include "core/chess_exception.h"
#include "core/fen.h"
#include "problems/annotations/database_links.h"
#include "problems/annotations/problem_tags.h"
#include "tests/problems/problem_text.h"

namespace moremate {
namespace {

const char* const kDiagramLayout =
    "\\begin{diagram}\n"
    "\\author{J. Halumbirek}\n"
    "\\source{Freie Presse}\n"
    "\\year{1968}\n"
    "\\award{2nd-3rd Prize}\n"
    "\\stip{\\#8}\n"
    "%\\fen{8/8/8/8/1k6/1p6/pp1p1Q2/rrbK4}\n"
    "% PDB-ID: P1234567\n"
    "\\end{diagram}\n";

const char* const kKeyValueLayout =
    "---\n"
    "problemid: 98765\n"
    "stipulation: \"#3\"\n"
    "algebraic:\n"
    "  white: [Kc7, Qg5, Sg4, Pa3]\n"
    "  black: [Kh8, Pa5]\n";

TEST(ForeignProblem, DiagramLayoutGivesRecordWithPlaceTagAndReference) {
    const std::optional<TForeignProblem> problem = RecognizeForeignProblem(kDiagramLayout);
    ASSERT_TRUE(problem);
    EXPECT_EQ(problem->nMoves, 8);
    EXPECT_EQ(problem->sAward, "2nd-3rd Prize");
    EXPECT_EQ(problem->reference, (TDatabaseReference{ProblemDatabase::Pdb, "P1234567"}));

    const ProblemEntry entry = ForeignProblemEntry(*problem, 7);
    EXPECT_EQ(entry.m_nPlies, 15);
    EXPECT_EQ(entry.m_sDescription, "J. Halumbirek, 1968, 2nd-3rd Prize, PDB: P1234567");
    EXPECT_EQ(Tags(entry), std::vector<std::string>{"2nd prize"});
    EXPECT_EQ(WriteFenPlacement(entry.m_position.board), "8/8/8/8/1k6/1p6/pp1p1Q2/rrbK4");
    EXPECT_EQ(testing::ReadOne(WriteCollectionText({entry})), entry);
}

TEST(ForeignProblem, KeyValueLayoutGivesRecordWithReference) {
    const std::optional<TForeignProblem> problem = RecognizeForeignProblem(kKeyValueLayout);
    ASSERT_TRUE(problem);
    EXPECT_EQ(problem->nMoves, 3);
    const ProblemEntry entry = ForeignProblemEntry(*problem, 1);
    EXPECT_EQ(WriteFenPlacement(entry.m_position.board), "7k/2K5/8/p5Q1/6N1/P7/8/8");
    EXPECT_EQ(entry.m_sDescription, "YACPDB=98765");
    EXPECT_TRUE(Tags(entry).empty());
    EXPECT_EQ(testing::ReadOne(WriteCollectionText({entry})), entry);
}

TEST(ForeignProblem, OtherTextsAndStipulations) {
    EXPECT_FALSE(RecognizeForeignProblem("1 #2 { FEN: 8/8/8/8/8/8/8/K1k5 }"));
    const std::optional<TForeignProblem> helpmate =
        RecognizeForeignProblem("stipulation: \"h#2\"\nwhite: [Ka1]\nblack: [Kc1]\n");
    ASSERT_TRUE(helpmate);
    EXPECT_FALSE(helpmate->nMoves);
    EXPECT_EQ(ForeignProblemEntry(*helpmate, 1).m_type, ProblemType::Position);
    EXPECT_THROW(RecognizeForeignProblem("white: [Ka1, Xb2]\nblack: [Kc1]\n"), ChessException);
    EXPECT_THROW(RecognizeForeignProblem("%\\fen{not a fen}\n"), ChessException);
}

TEST(DatabaseLinks, PdbIdentifiersTakeTheirLetter) {
    EXPECT_EQ(DatabaseLink(ProblemDatabase::Pdb, "P123"), DatabaseLink(ProblemDatabase::Pdb, "123"));
}

TEST(DatabaseLinks, ReferencesInDescriptions) {
    EXPECT_EQ(FindDatabaseReferences("Bone 1876 (Meson: 4711; PDB: P0500123), YACPDB=99 Albrecht: A12"),
              (std::vector<TDatabaseReference>{{ProblemDatabase::Meson, "4711"},
                                               {ProblemDatabase::Pdb, "P0500123"},
                                               {ProblemDatabase::Yacpdb, "99"},
                                               {ProblemDatabase::Albrecht, "A12"}}));
    EXPECT_TRUE(FindDatabaseReferences("PDB: , no reference").empty());
    for (const TDatabaseReference& reference :
         FindDatabaseReferences("PDB: P1 Meson: 2 YACPDB=3 Albrecht: 4"))
        EXPECT_EQ(FindDatabaseReferences(DescriptionReference(reference)),
                  std::vector<TDatabaseReference>{reference});
}

}  // namespace
}  // namespace moremate
