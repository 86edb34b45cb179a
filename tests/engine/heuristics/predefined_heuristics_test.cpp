#include "engine/heuristics/predefined_heuristics.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "tests/core/test_errors.h"

namespace moremate {
namespace {

constexpr Square D5 = 35, E7 = 52, H1 = 7;

struct TTokenCase {
    const char* sTokens;
    uint32_t nAdded;  // bits added to the starting set
    std::function<bool(const TPredefinedHeuristics&)> check;
};

TEST(PredefinedHeuristics, EveryToken) {
    // clang-format off
    const std::vector<TTokenCase> cases = {
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
         [](const auto& r) { const auto& f = r.m_set.params.ffm; return f.mode == kFfmThreat5 && f.initialMode == f.mode; }},
        {"FFM(#1+)", SH_FINDFORCEDMATE, [](const auto& r) { return r.m_set.params.ffm.mode == kFfmThreat1Plus; }},
        {"SafeMode, ExtEdge  DLFU(a1,b2),FFM(#2)",
         SH_KEEPKINGWITHINEXTEDGE | SH_DONTLETFIGUREUNBLOCK | SH_FINDFORCEDMATE,
         [](const auto& r) { return r.m_bSafeModeForced && r.m_set.params.blockedCount == 2; }},
        {"", 0, [](const auto& r) { return !r.m_bSafeModeForced && !r.m_bDlfuForbidden && !r.m_nSyzygyLevels; }},
    };
    // clang-format on
    const THeuristicSet start{SH_3MOVESTOMATE, {}};
    for (const TTokenCase& c : cases) {
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
        EXPECT_EQ(test::ErrorOf([&] { ApplyPredefinedAdditionalHeuristics({}, tokens); }), prefix + reason);
    }
}

}  // namespace
}  // namespace moremate
