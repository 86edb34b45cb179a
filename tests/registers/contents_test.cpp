// The register's contents as a whole: statistics texts, iteration for register files, entries
// read back from files, and the size a memory quota allows.
#include <gtest/gtest.h>

#include <limits>
#include <tuple>
#include <vector>

#include "register_test_support.h"
#include "registers/aggregated_register.h"
#include "registers/register_size.h"
#include "registers/register_statistics.h"

namespace moremate {
namespace {

using testing::NumberedKey;

TChessboardRegisterEntry Loaded(uint32_t i, uint16_t nMovesMate, uint16_t nMovesNoMate) {
    TChessboardRegisterEntry entry;
    entry.key = NumberedKey(i);
    entry.MovesMate = nMovesMate;
    entry.MovesNoMate = nMovesNoMate;
    return entry;
}

// One bucket, so that the entry places are known: a node of 8 per store.
class RegisterContents : public ::testing::Test {
  protected:
    RegisterContents() : reg(200, 1) {
        reg.Insert(5, NumberedKey(1), true);
        reg.Insert(9, NumberedKey(2), true);
        reg.Insert(6, NumberedKey(2), false);
        reg.Insert(23, NumberedKey(3), false);
        reg.Insert(8, NumberedKey(4), false);
        reg.InsertDoubtful(ConfigurationKey(6, 1), 7, NumberedKey(1), true);
        reg.InsertDoubtful(ConfigurationKey(2, 9), 11, NumberedKey(2), false);
        reg.InsertDoubtful(ConfigurationKey(2, 9), 13, NumberedKey(3), true);
        reg.Insert(9, NumberedKey(7), true, 0.0, 0);
    }
    TAggregatedTemporaryChessboardRegister reg;
};

TEST_F(RegisterContents, StatisticsAndSummaryTexts) {
    EXPECT_EQ(RegisterStatistics(reg),
              "Buckets count = 1 (4.00 elems per bucket)\nElements count = 8\nCurrent capacity = 24\n"
              "Max. elements count = 200 (4.0%)\n\nMate elements = 2\nNo mate elements = 3\n\n"
              "Doubtful elements = 2\nNot doubtful elements = 1");
    EXPECT_EQ(RegisterSummary(reg),
              "Total number of positions: 7\nTotal number of 'mate' positions: 2\n"
              "Total number of 'no mate' positions: 3\nTotal number of 'mate doubtful' positions: 2\n"
              "Total number of 'mate not doubtful' positions: 1\n#n range: #3-12");
}

TEST_F(RegisterContents, EveryEntryWithItsConfiguration) {
    std::vector<std::tuple<uint64_t, uint16_t, uint16_t>> visited;
    reg.ForEachConfigurationEntry([&visited](uint64_t nConfiguration, const TChessboardRegisterEntry& entry) {
        visited.emplace_back(nConfiguration, entry.MovesMate, entry.MovesNoMate);
    });
    const std::vector<std::tuple<uint64_t, uint16_t, uint16_t>> expected = {
        {0, 5, 0},
        {0, 9, 6},
        {0, 0, 23},
        {0, 0, 8},                       // insertion order within the node
        {ConfigurationKey(6, 1), 7, 0},  // ConfigurationKey(6, 1) < ConfigurationKey(2, 9)
        {ConfigurationKey(2, 9), 0, 11},
        {ConfigurationKey(2, 9), 13, 0},
    };
    EXPECT_EQ(visited, expected);
}

TEST_F(RegisterContents, EntriesReadBackKeepTheBestValues) {
    EXPECT_TRUE(reg.Merge(0, Loaded(1, 3, 0)));    // shorter mate
    EXPECT_FALSE(reg.Merge(0, Loaded(2, 11, 4)));  // nothing better than 9 / 6
    EXPECT_TRUE(reg.Merge(0, Loaded(9, 15, 13)));  // new
    EXPECT_TRUE(reg.Merge(0, Loaded(8, 5, 7)));    // kept as read, even when incoherent
    EXPECT_TRUE(reg.Merge(ConfigurationKey(2, 9), Loaded(2, 15, 13)));
    EXPECT_TRUE(reg.Merge(ConfigurationKey(5, 5), Loaded(2, 3, 0)));  // a new configuration
    EXPECT_EQ(reg.Find(NumberedKey(1))->MovesMate, 3);
    EXPECT_EQ(reg.Find(NumberedKey(2))->MovesMate, 9);
    EXPECT_EQ(reg.Find(NumberedKey(2))->MovesNoMate, 6);
    EXPECT_EQ(reg.Find(NumberedKey(9))->MovesNoMate, 13);
    EXPECT_EQ(reg.Find(NumberedKey(8))->MovesNoMate, 7);
    const auto doubtful = reg.FindDoubtful(ConfigurationKey(2, 9), NumberedKey(2));
    EXPECT_EQ(doubtful->MovesMate, 15);
    EXPECT_EQ(doubtful->MovesNoMate, 13);
    EXPECT_EQ(reg.FindDoubtful(ConfigurationKey(5, 5), NumberedKey(2))->MovesMate, 3);
    EXPECT_EQ(reg.ElementCount(), 11u);
}

// About four to eight entries per bucket; a capacity given is kept.
TEST(RegisterSize, FromMemoryOrCapacity) {
    const struct {
        uint64_t nMegabytes;
        uint32_t nCapacity;
        size_t nBuckets;
    } cases[] = {
        {0, 16'384, 4'096},
        {1, 16'384, 4'096},
        {10, 65'536, 16'384},
        {1'024, 6'710'886, 1'048'576},
        {4'915, 32'210'944, 4'194'304},
        {1'000'000, std::numeric_limits<uint32_t>::max(), 536'870'912},
    };
    for (const auto& c : cases) {
        const TRegisterSize size = RegisterSizeForMemory(c.nMegabytes);
        EXPECT_EQ(size.nCapacity, c.nCapacity) << c.nMegabytes;
        EXPECT_EQ(size.nBuckets, c.nBuckets) << c.nMegabytes;
    }
    const TRegisterSize size = RegisterSizeForCapacity(1'000'000);
    EXPECT_EQ(size.nCapacity, 1'000'000u);
    EXPECT_EQ(size.nBuckets, 131'072u);
}

}  // namespace
}  // namespace moremate
