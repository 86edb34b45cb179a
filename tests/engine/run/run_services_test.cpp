#include "engine/run/run_services.h"

#include <gtest/gtest.h>

#include "tests/core/test_line.h"

namespace moremate {
namespace {

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
