#include "engine/heuristics/heuristic_text.h"

#include <gtest/gtest.h>

#include <functional>
#include <tuple>
#include <vector>

#include "core/chess_exception.h"
#include "engine/heuristics/heuristic_names.h"
#include "engine/heuristics/predefined_heuristics.h"
#include "tests/support/positions.h"

namespace moremate {
namespace {

constexpr Square A1 = 0, H1 = 7, D5 = 35, E7 = 52, H8 = 63, B2 = 9, C3 = 18;

using TSetUp = std::function<void(THeuristicParameters&)>;

THeuristicParameters With(const TSetUp& setUp) {
    THeuristicParameters params;
    setUp(params);
    return params;
}

TEST(HeuristicText, ParameterTexts) {
    // clang-format off
    const struct { uint32_t bit; TSetUp setUp; std::string text; } cases[] = {
        {SH_KEEPKINGONTHEEDGE, [](auto&) {}, ""},
        {SH_KEEPKINGONTHEEDGE, [](auto& p) {
             p.kingMode = TKingMode::AlmostStrict, p.inclCorner = p.edgeStrict = true;
             p.edgeRelaxation.figuresToCapture = 2,
                 p.edgeRelaxation.onAdvancedPawn = p.edgeRelaxation.deferCheck = true;
             p.edgeRelaxation.deferMoves = 3, p.edgeRelaxation.deferSecondCount = 1; },
         "ALMOST_STRICT,incl.corner,C2f,A,D3,M1,strict"},
        // Relaxations for the ext.edge only are not written for the edge.
        {SH_KEEPKINGONTHEEDGE, [](auto& p) { p.edgeRelaxation.figuresToCapture = 1,
         p.edgeRelaxation.extEdgeOnly = true; }, ""},
        {SH_KEEPKINGWITHINEXTEDGE, [](auto& p) {
             p.edgeRelaxation.figuresToCapture = 1, p.edgeRelaxation.alsoPawns = p.edgeRelaxation.extEdgeOnly = true;
             p.inclCorner = p.edgeStrict = true; },
         "C1,incl.corner,strict"},
        {SH_ONECOLORPLAYPOSSIBLE, [](auto& p) { p.colourMode = TColourMode::SeparatedBlackBishop; },
         "SeparatedBlackBishop"},
        {SH_ONECOLORPLAYPOSSIBLE, [](auto&) {}, ""},
        {SH_DONTLEAVEMAINDIAGONAL, [](auto& p) { p.mainDiagonalFigure = D5; }, "D5"},
        {SH_DONTLETFIGUREUNBLOCK, [](auto& p) { p.dlfuEff = true, p.blockedFigures[0] = H1, p.blockedFigures[1] = D5,
         p.blockedCount = 2; }, "EFF,H1,D5"},
        {SH_FINDFORCEDMATE, [](auto& p) { p.ffm.mode = kFfmCheckOnly; }, "CheckOnly"},
        {SH_FINDFORCEDMATE, [](auto& p) { p.ffm.mode = kFfmThreat1Plus; }, "#1+"},
        {SH_FINDFORCEDMATE, [](auto& p) { p.ffm.mode = kFfmThreat5, p.ffm.withOtherHeuristics = 1,
         p.ffm.preliminary = p.ffm.custom = true; },
         "#5-WithOtherHeuristics-Preliminary-Custom"},
        {SH_FINDFORCEDMATE, [](auto& p) { p.ffm.mode = 1, p.ffm.withOtherHeuristics = 2, p.ffm.custom = true; },
         "-WithOtherHeuristics-Custom"},
        {SH_FINDFORCEDMATE, [](auto& p) { p.ffm.mode = 10; }, ""},
        {SH_DONTLETPROMOTEDFIGUREMOVE, [](auto& p) { p.promotedStrict = true; }, "strict"},
        {SH_KEYLINE, [](auto& p) { p.keyLine = 7; }, "H"},
        {SH_KEYDIAGONAL, [](auto& p) { p.keyDiagonal[0] = A1, p.keyDiagonal[1] = H8; }, "A1-H8"},
        {SH_KEYDIAGONAL, [](auto& p) { p.keyDiagonal[0] = 0x40, p.keyDiagonal[1] = 0x80 | C3; }, "-"},
        {SH_DONTLOSEANYFIGURES, [](auto& p) { p.loseFiguresPawns = 1; }, "incl.pawns"},
        {SH_DONTLOSEANYFIGURES, [](auto& p) { p.loseFiguresPawns = 7; }, "incl.pawnsBeforePromo"},
        {SH_KEYWHITEFIGURE, [](auto& p) { p.keyWhiteFigure = B2; }, "B2"},
        {SH_SKIPWORSTWHITEMOVES, [](auto& p) { p.skipPassive = true; }, "SkipPassive"},
        {SH_KEEPKINGNEARCORNER, [](auto& p) { p.cornerDistance = 0; }, "0M"},
        {SH_KEEPKINGNEARCORNER, [](auto& p) { p.cornerDistance = 3; }, "3S"},
        {SH_KEEPKINGNEARCORNER, [](auto& p) { p.cornerDistance = -128; }, "128M"},
        {SH_SEASNAKE, [](auto& p) { p.seaSnake.approach = C3, p.seaSnake.turnBack = B2; }, "C3,B2"},
        {SH_SEASNAKE, [](auto& p) { p.seaSnake.approach = C3, p.seaSnake.turnBack = B2,
         p.seaSnake.onlyAfterMove = 4; }, "C3,B2,4"},
        {SH_AREKINGSNEAR, [](auto& p) { p.promotedStrict = true, p.skipPassive = true; }, ""},
        {SH_ZUGZWANG, [](auto& p) { p.zugzwangSet = true, p.zugzwangAfterMove = 3; }, ""},
    };
    // clang-format on
    for (const auto& c : cases)
        EXPECT_EQ(HeuristicParameterText(c.bit, With(c.setUp)), c.text)
            << HeuristicName(c.bit) << " " << c.text;
}

TEST(HeuristicText, DisplayNamesReplaceOnlyTheFourComposedTexts) {
    // clang-format off
    const std::vector<std::tuple<uint32_t, TSetUp, std::string>> cases = {
        {SH_KEEPKINGONTHEEDGE, [](auto&) {}, "SH_KEEPKINGONTHEEDGE"},
        {SH_KEEPKINGONTHEEDGE, [](auto& p) { p.kingMode = TKingMode::Strict; }, "SH_DONTLETKINGMOVE"},
        {SH_KEEPKINGONTHEEDGE, [](auto& p) { p.kingMode = TKingMode::AlmostStrict; }, "SH_DONTLETKINGMOVE(excptns)"},
        {SH_KEEPKINGONTHEEDGE, [](auto& p) { p.edgeStrict = true; }, "SH_DONTLETKINGMOVE"},
        {SH_KEEPKINGONTHEEDGE, [](auto& p) { p.kingMode = TKingMode::Strict, p.inclCorner = true; },
         "SH_KEEPKINGONTHEEDGE(STRICT,incl.corner)"},
        {SH_SKIPWORSTWHITEMOVES, [](auto& p) { p.skipPassive = true; }, "SH_SKIPPASSIVEWHITEMOVES"},
        {SH_ASSERTBLACKKINGSURROUNDED, [](auto& p) { p.surroundedStrict = true; },
         "SH_ASSERTBLACKKINGSURROUNDED(strict)"},
        {SH_SAVEQUEENROOK, [](auto&) {}, "SH_SAVEQUEEN/ROOK"}, {0x100, [](auto&) {}, "..."},
    };
    // clang-format on
    for (const auto& [bit, setUp, text] : cases) EXPECT_EQ(HeuristicText(bit, With(setUp)), text);
}

THeuristicSet SetOf(
    uint32_t mask, const TSetUp& setUp = [](auto&) {}) {
    return THeuristicSet{mask, With(setUp)};
}

TEST(HeuristicText, SetTexts) {
    const THeuristicSet plain = SetOf(SH_3MOVESTOMATE | SH_AREKINGSNEAR | SH_KEEPKINGNEARCORNER,
                                      [](auto& p) { p.cornerDistance = 2; });
    const THeuristicSet almostStrict = SetOf(SH_KEEPKINGONTHEEDGE | SH_SINGLEQUEENMATE,
                                             [](auto& p) { p.kingMode = TKingMode::AlmostStrict; });
    const THeuristicSet ffm = SetOf(SH_FINDFORCEDMATE, [](auto& p) { p.ffm.mode = kFfmThreat2; });
    const THeuristicSet noDynamicDlfu = SetOf(SH_DONTLETFIGUREUNBLOCK, [](auto& p) {
        p.blockedFigures[0] = D5, p.blockedCount = 1, p.dlfuDynamic = false;
    });
    // clang-format off
    const std::vector<std::tuple<THeuristicSet, THeuristicTextContext, std::string>> cases = {
        {plain, {}, "SH_AREKINGSNEAR, SH_3MOVESTOMATE, SH_KEEPKINGNEARCORNER(2S)"},
        {plain, {true, 0}, "SH_AREKINGSNEAR, SH_3MOVESTOMATE, SH_KEEPKINGNEARCORNER(2S),  QuickMode"},
        {almostStrict, {true, 1}, "SH_DONTLETKINGMOVE(excptns), SH_SINGLEQUEENMATE"},
        {almostStrict, {true, 2}, "SH_DONTLETKINGMOVE(excptns), SH_SINGLEQUEENMATE,  QuickMode"},
        {ffm, {true, 2}, "SH_FINDFORCEDMATE(#2)"},
        {noDynamicDlfu, {true, 2}, "SH_DONTLETFIGUREUNBLOCK(D5),  QuickMode (CannotApplyDLFUDynamically)"},
        {SetOf(0), {}, ""}, {SetOf(0x100 | SH_ZUGZWANG), {}, "..., SH_ZUGZWANG"},
    };
    // clang-format on
    for (const auto& [set, context, text] : cases) EXPECT_EQ(HeuristicSetText(set, context), text);
}

// Sets whose every parameter has a printed form, so that they read back unchanged.
std::vector<THeuristicSet> PrintableSets() {
    // clang-format off
    return {
        SetOf(SH_KEEPKINGONTHEEDGE | SH_KEEPKINGWITHINEXTEDGE, [](auto& p) {
            p.kingMode = TKingMode::Strict, p.inclCorner = p.edgeStrict = true;
            p.edgeRelaxation.figuresToCapture = 3, p.edgeRelaxation.onAdvancedPawn = p.edgeRelaxation.deferCheck = true;
            p.edgeRelaxation.deferMoves = 4, p.edgeRelaxation.deferSecondCount = 2; }),
        SetOf(SH_KEEPKINGONTHEEDGE | SH_KEEPKINGWITHINEXTEDGE, [](auto& p) {
            p.edgeRelaxation.figuresToCapture = 1, p.edgeRelaxation.alsoPawns = p.edgeRelaxation.extEdgeOnly = true; }),
        SetOf(SH_KEEPKINGONTHEEDGE | SH_SKIPWORSTWHITEMOVES | SH_ZUGZWANG,
              [](auto& p) { p.kingMode = TKingMode::AlmostStrict, p.skipPassive = true; }),
        SetOf(SH_ONECOLORPLAYPOSSIBLE | SH_DONTLEAVEMAINDIAGONAL | SH_DONTLETFIGUREUNBLOCK |
              SH_DONTLETPROMOTEDQUEENMOVE | SH_DONTLETPROMOTEDFIGUREMOVE | SH_DONTLOSEANYFIGURES, [](auto& p) {
            p.colourMode = TColourMode::SeparatedBlackBishop, p.mainDiagonalFigure = C3, p.dlfuEff = true;
            for (Square s : {A1, H1, D5, E7, H8, B2, C3, Square{44}}) p.blockedFigures[p.blockedCount++] = s;
            p.dlfuDynamic = false, p.promotedStrict = true, p.loseFiguresPawns = 2; }),
        SetOf(SH_FINDFORCEDMATE | SH_KEYLINE | SH_KEYDIAGONAL | SH_KEYSQUARE | SH_KEYWHITEFIGURE, [](auto& p) {
            p.ffm.mode = p.ffm.initialMode = kFfmThreat2Plus, p.ffm.withOtherHeuristics = 2;
            p.ffm.preliminary = p.ffm.custom = true;
            p.keyLine = 0, p.keyDiagonal[0] = H1, p.keyDiagonal[1] = A1 + 56, p.keySquare = E7,
                p.keyWhiteFigure = H8; }),
        SetOf(SH_ASSERTBLACKKINGSURROUNDED | SH_KEEPKINGNEARCORNER | SH_SEASNAKE | SH_CAPTUREKNIGHT, [](auto& p) {
            p.surroundedStrict = true, p.cornerDistance = -3;
            p.seaSnake.approach = D5, p.seaSnake.turnBack = E7, p.seaSnake.onlyAfterMove = 12; }),
        SetOf(SH_KEEPKINGNEARCORNER | SH_FINDFORCEDMATE | SH_ONECOLORPLAYPOSSIBLE, [](auto& p) {
            p.cornerDistance = 5, p.ffm.mode = p.ffm.initialMode = kFfmCheckOnly;
            p.colourMode = TColourMode::WhiteSquaresOnly; }),
        SetOf(0xFFFFFFFFu & ~(0x100u | 0x10000000u | 0x20000000u)),
    };
    // clang-format on
}

TEST(HeuristicText, PrintableSetsReadBackUnchanged) {
    for (const THeuristicSet& set : PrintableSets()) {
        for (bool quick : {false, true}) {
            const std::string text = HeuristicSetText(set, {quick, 2});
            const THeuristicSetReading reading = ReadHeuristicSetText(text);
            EXPECT_EQ(reading.m_set, set) << text;
            EXPECT_EQ(reading.m_bQuickMode, quick && !set.Has(SH_FINDFORCEDMATE)) << text;
        }
    }
}

TEST(HeuristicText, TextsOfSetsWithUnprintedDetailsReadBackToTheSameText) {
    // clang-format off
    const std::vector<THeuristicSet> sets = {
        SetOf(SH_KEEPKINGONTHEEDGE, [](auto& p) { p.edgeStrict = true; }),
        SetOf(SH_FINDFORCEDMATE, [](auto& p) { p.ffm.withOtherHeuristics = 1, p.ffm.relaxations = 5; }),
        SetOf(SH_KEYDIAGONAL | SH_SEASNAKE, [](auto& p) { p.seaSnake.pendulum[0] = A1; }),
        SetOf(SH_ZUGZWANG | SH_KEEPKINGWITHINEXTEDGE,
            [](auto& p) { p.zugzwangSet = true; p.edgeRelaxation.automatic = true; p.quickMateDepth = 4; }),
    };
    // clang-format on
    for (const THeuristicSet& set : sets) {
        const std::string text = HeuristicSetText(set);
        EXPECT_EQ(HeuristicSetText(ReadHeuristicSetText(text).m_set), text);
    }
    EXPECT_EQ(ReadHeuristicSetText("SH_DONTLETKINGMOVE").m_set.params.kingMode, TKingMode::Strict);
}

TEST(HeuristicText, ItemsAndParameterTextsAreReadAsWritten) {
    THeuristicSet set;
    EXPECT_EQ(ReadHeuristicItem("sh_keepkingontheedge(STRICT,incl.corner)", set), SH_KEEPKINGONTHEEDGE);
    EXPECT_EQ(set.params.kingMode, TKingMode::Strict);
    EXPECT_TRUE(set.params.inclCorner);
    EXPECT_EQ(ReadHeuristicItem("SH_SKIPPASSIVEWHITEMOVES", set), SH_SKIPWORSTWHITEMOVES);
    EXPECT_TRUE(set.params.skipPassive);
    EXPECT_EQ(ReadHeuristicItem("...", set), 0u);
    EXPECT_EQ(set.mask, SH_KEEPKINGONTHEEDGE | SH_SKIPWORSTWHITEMOVES);

    THeuristicParameters params = With([](auto& p) {
        p.edgeRelaxation.figuresToCapture = 2;
        p.ffm.relaxations = 4;
        p.blockedCount = 3;
    });
    ReadHeuristicParameters(SH_KEEPKINGONTHEEDGE, "ALMOST_STRICT", params);
    EXPECT_EQ(params.edgeRelaxation.figuresToCapture, 2) << "an edge text without items keeps the relaxation";
    ReadHeuristicParameters(SH_KEEPKINGWITHINEXTEDGE, "strict", params);
    EXPECT_EQ(params.edgeRelaxation.figuresToCapture, 0) << "the ext.edge text always states it";
    ReadHeuristicParameters(SH_FINDFORCEDMATE, "#3-Custom", params);
    EXPECT_EQ(params.ffm.mode, kFfmThreat3);
    EXPECT_EQ(params.ffm.initialMode, kFfmThreat3);
    EXPECT_EQ(params.ffm.relaxations, 4);
    ReadHeuristicParameters(SH_FINDFORCEDMATE, "-Preliminary", params);
    EXPECT_EQ(params.ffm.mode, kFfmThreat3) << "a text without a mode keeps it";
    EXPECT_TRUE(params.ffm.preliminary);
    EXPECT_FALSE(params.ffm.custom);
    ReadHeuristicParameters(SH_DONTLETFIGUREUNBLOCK, "h1,d5", params);
    EXPECT_EQ(params.blockedCount, 2);
    EXPECT_EQ(params.blockedFigures[1], D5);
    ReadHeuristicParameters(SH_KEYLINE, "c", params);
    EXPECT_EQ(params.keyLine, 2);
}

TEST(HeuristicText, UnreadableTextsAreRefusedWithTheHeuristicAndItem) {
    // clang-format off
    const std::vector<std::pair<uint32_t, std::string>> cases = {
        {SH_KEEPKINGONTHEEDGE, "Strict"}, {SH_KEEPKINGONTHEEDGE, "C"}, {SH_KEEPKINGONTHEEDGE, "Cxf"},
        {SH_KEEPKINGONTHEEDGE, "D-1"}, {SH_KEEPKINGWITHINEXTEDGE, "STRICT"}, {SH_ONECOLORPLAYPOSSIBLE, "WhiteSquares"},
        {SH_DONTLEAVEMAINDIAGONAL, "I1"}, {SH_DONTLEAVEMAINDIAGONAL, "D55"}, {SH_DONTLETFIGUREUNBLOCK, "A0"},
        {SH_DONTLETFIGUREUNBLOCK, "A1,B1,C1,D1,E1,F1,G1,H1,A2"}, {SH_FINDFORCEDMATE, "#6"},
        {SH_FINDFORCEDMATE, "#2-Partially"}, {SH_FINDFORCEDMATE, "#2-"}, {SH_KEYLINE, "I"}, {SH_KEYLINE, "AB"},
        {SH_KEYDIAGONAL, "A1"}, {SH_KEYDIAGONAL, "A1-B2-C3"}, {SH_DONTLOSEANYFIGURES, "pawns"},
        {SH_ASSERTBLACKKINGSURROUNDED, "STRICT"}, {SH_SKIPWORSTWHITEMOVES, "skippassive"},
        {SH_KEEPKINGNEARCORNER, ""}, {SH_KEEPKINGNEARCORNER, "3"}, {SH_KEEPKINGNEARCORNER, "128S"},
        {SH_KEEPKINGNEARCORNER, "129M"}, {SH_SEASNAKE, "C3"}, {SH_SEASNAKE, "C3,B2,x"}, {SH_AREKINGSNEAR, "strict"},
    };
    // clang-format on
    for (const auto& [bit, text] : cases) {
        THeuristicParameters params;
        EXPECT_THROW(ReadHeuristicParameters(bit, text, params), ChessException) << text;
    }
    THeuristicParameters params;
    EXPECT_EQ(test::ErrorOf([&] { ReadHeuristicParameters(SH_KEEPKINGNEARCORNER, "9X", params); }),
              "Invalid parameter of SH_KEEPKINGNEARCORNER: \"9X\"");
    THeuristicSet set;
    EXPECT_THROW(ReadHeuristicItem("SH_NOSUCHTHING", set), ChessException);
    EXPECT_THROW(ReadHeuristicItem("SH_KEYLINE(A", set), ChessException);
    EXPECT_THROW(ReadHeuristicSetText("SH_AREKINGSNEAR,SH_KEYLINE"), ChessException);
}

TEST(HeuristicNames, EveryNameLeadsBackToItsBit) {
    for (uint32_t mask : {0u, 0x100u, 0x10000000u, 0x20000000u, 0x3u, 0xffffffffu})
        EXPECT_EQ(HeuristicName(mask), "...");
    int named = 0;
    for (int bit = 0; bit < kHeuristicBitCount; ++bit) {
        const uint32_t mask = uint32_t{1} << bit;
        if (HeuristicName(mask) == "...") continue;
        ++named;
        EXPECT_EQ(HeuristicFromName(HeuristicName(mask)), mask) << bit;
    }
    EXPECT_EQ(named, 29);
    EXPECT_EQ(HeuristicFromName("sh_keepKingOnTheEdge"), SH_KEEPKINGONTHEEDGE);
    EXPECT_EQ(HeuristicFromName("SH_KEEPKINGONTHEEDG"), 0u);
    EXPECT_EQ(HeuristicFromName("..."), 0u);
    EXPECT_EQ(HeuristicFromName(""), 0u);
}

TEST(PredefinedHeuristics, EveryToken) {
    // clang-format off
    // The tokens, the bits they add to the starting set, and a check of what else they set.
    const struct { const char* sTokens; uint32_t nAdded; std::function<bool(const TPredefinedHeuristics&)> check; }
        cases[] = {
        {"SafeMode", 0, [](const auto& r) { return r.m_bSafeModeForced; }},
        {"AssertBKS", SH_ASSERTBLACKKINGSURROUNDED, [](const auto& r) { return !r.m_set.params.surroundedStrict; }},
        {"AssertBKS(strict)", SH_ASSERTBLACKKINGSURROUNDED,
         [](const auto& r) { return r.m_set.params.surroundedStrict; }},
        {"assertbks(STRICT)", SH_ASSERTBLACKKINGSURROUNDED,
         [](const auto& r) { return r.m_set.params.surroundedStrict; }},
        {"ExtEdge", SH_KEEPKINGWITHINEXTEDGE, [](const auto&) { return true; }},
        {"DontLetKingMove", SH_KEEPKINGONTHEEDGE,
         [](const auto& r) { return r.m_set.params.kingMode == TKingMode::Strict; }},
        {"DontLetPromotedQueenMove", SH_DONTLETPROMOTEDQUEENMOVE, [](const auto&) { return true; }},
        {"DLFU(h1,d5,e7)", SH_DONTLETFIGUREUNBLOCK,
         [](const auto& r) {
             const THeuristicParameters& p = r.m_set.params;
             return p.blockedCount == 3 && p.blockedFigures[0] == H1 && p.blockedFigures[1] == D5 &&
                    p.blockedFigures[2] == E7 && p.blockedFigures[3] == kNoSquare;
         }},
        {"!DLFU", 0, [](const auto& r) { return r.m_bDlfuForbidden && !r.m_set.params.dlfuDynamic; }},
        {"LFQMDepth(#4)", 0, [](const auto& r) { return r.m_set.params.quickMateDepth == 4; }},
        {"SyzygyLevels(5)", 0, [](const auto& r) { return r.m_nSyzygyLevels == 5; }},
        {"FFM(#5)", SH_FINDFORCEDMATE,
         [](const auto& r) {
             return r.m_set.params.ffm.mode == kFfmThreat5 && r.m_set.params.ffm.initialMode == kFfmThreat5;
         }},
        {"FFM(#1+)", SH_FINDFORCEDMATE, [](const auto& r) { return r.m_set.params.ffm.mode == kFfmThreat1Plus; }},
        {"SafeMode, ExtEdge  DLFU(a1,b2),FFM(#2)",
         SH_KEEPKINGWITHINEXTEDGE | SH_DONTLETFIGUREUNBLOCK | SH_FINDFORCEDMATE,
         [](const auto& r) { return r.m_bSafeModeForced && r.m_set.params.blockedCount == 2; }},
        {"", 0, [](const auto& r) { return !r.m_bSafeModeForced && !r.m_bDlfuForbidden && !r.m_nSyzygyLevels; }},
    };
    // clang-format on
    const THeuristicSet start{SH_3MOVESTOMATE, {}};
    for (const auto& c : cases) {
        const TPredefinedHeuristics result = ApplyPredefinedAdditionalHeuristics(start, c.sTokens);
        EXPECT_EQ(result.m_set.mask, start.mask | c.nAdded) << c.sTokens;
        EXPECT_TRUE(c.check(result)) << c.sTokens;
    }
}

TEST(PredefinedHeuristics, ErrorsNameTheReason) {
    const std::string prefix = "Error occurred in ApplyPredefinedAdditionalHeuristics() : ";
    // clang-format off
    const std::vector<std::pair<const char*, std::string>> cases = {
        {"DLFU(h1,d55)", "Invalid square description at index 8"},
        {"SafeMode DLFU(h1,,e7)", "Invalid square description at index 17"},
        {"DLFU()", "Invalid square description at index 5"},
        {"DLFU(a1,b1,c1,d1,e1,f1,g1,h1,a2)", "Invalid square description at index 29"},
        {"DLFU(h1,i5)", "Invalid square"}, {"DLFU(h1,d9)", "Invalid square"},
        {"dlfu(h1)", "Unrecognized token: dlfu(h1)"}, {"safeMode extedge", "Unrecognized token: extedge"},
        {"AssertBKS(loose)", "Unrecognized token: AssertBKS(loose)"},
        {"LFQMDepth(4)", "Unrecognized token: LFQMDepth(4)"}, {"LFQMDepth(#10)", "Unrecognized token: LFQMDepth(#10)"},
        {"SyzygyLevels(x)", "Unrecognized token: SyzygyLevels(x)"}, {"FFM(#6)", "Unrecognized token: FFM(#6)"},
    };
    // clang-format on
    for (const auto& [tokens, reason] : cases) {
        EXPECT_EQ(test::ErrorOf([text = tokens] { ApplyPredefinedAdditionalHeuristics({}, text); }),
                  prefix + reason);
    }
}

}  // namespace
}  // namespace moremate
