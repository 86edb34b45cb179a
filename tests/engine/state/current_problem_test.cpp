#include "engine/state/current_problem.h"

#include <gtest/gtest.h>

#include <string>

namespace moremate {
namespace {

TEST(CurrentProblem, CopiesTextAndNumberWithinTheBuffers) {
    const std::string longName(400, 'x');
    const struct {
        std::string name;
        int number;
        size_t size;  // of the reader's buffer
        std::string expected;
    } cases[] = {
        {"Loyd 1859", 7, 64, "Loyd 1859,7"},
        {"", -12, 64, ",-12"},
        {"Loyd 1859", 123, 8, "Loyd 18"},  // cut to the reader's buffer, zero-terminated
        {longName, 5, 1024, std::string(kCurrentTextCapacity - 1, 'x') + ",5"},  // cut to the store's
    };
    for (const auto& c : cases) {
        SetCurrentProblem(c.name, c.number);
        std::string out(c.size, '?');
        const size_t length = CopyCurrentProblem(out.data(), out.size());
        EXPECT_EQ(out.substr(0, length), c.expected);
        EXPECT_EQ(out[length], '\0');
    }
    {
        const CCurrentProblemScope scope("Sam Loyd", 3, "8/8/8/8/8/8/8/K1k5 w - - 0 1", 5);
        char board[128];
        CopyCurrentChessboard(board, sizeof board);
        EXPECT_STREQ(board, "8/8/8/8/8/8/8/K1k5 w - - 0 1,5");
    }
    char problem[64];
    CopyCurrentProblem(problem, sizeof problem);
    EXPECT_STREQ(problem, ",0");  // the scope's end cleared it
}

}  // namespace
}  // namespace moremate
