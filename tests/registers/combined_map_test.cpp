// The hash, and the two bucket forms: nodes of eight and sorted arrays, growing and shrinking; the
// register's contents as a whole.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <tuple>
#include <vector>

#include "register_test_support.h"
#include "registers/aggregated_register.h"
#include "registers/chunk_allocator.h"
#include "registers/register_size.h"
#include "registers/register_statistics.h"

namespace moremate {
namespace {

using testing::EqualHashKey;
using testing::KeyOf;
using testing::NumberedKey;

// Byte i weighs (i + 1) squared: 1, 4, 9, ..., 4096 for the last.
TEST(RegisterHashValue, WeighsEachByteByItsPlace) {
    TChessboardRegisterItem all255;
    for (uint8_t& b : all255.squares) b = 255;
    const std::pair<TChessboardRegisterItem, uint32_t> cases[] = {
        {{}, 0},
        {KeyOf({{63, 1}}), 4096},
        {KeyOf({{0, 1}}), 1},
        {KeyOf({{1, 1}}), 4},
        {KeyOf({{0, 0x41}, {63, 0x81}}), 0x41 + 0x81 * 4096},
        {all255, 22'807'200},  // 255 * (1 + 4 + ... + 4096) = 255 * 89440
    };
    for (const auto& [key, nHash] : cases) EXPECT_EQ(RegisterHash(key), nHash);
    for (uint8_t i = 0; i < 64; ++i) EXPECT_EQ(RegisterHash(EqualHashKey(i)), 252u);
    // Every place with every byte value's high and low bits, and keys full of bytes.
    for (int square = 0; square < 64; ++square) {
        for (uint32_t byte : {1u, 0x41u, 0x80u, 0xFFu})
            EXPECT_EQ(RegisterHash(KeyOf({{square, static_cast<uint8_t>(byte)}})),
                      byte * static_cast<uint32_t>((square + 1) * (square + 1)))
                << square;
    }
    uint32_t state = 7;
    for (int i = 0; i < 1'000; ++i) {
        TChessboardRegisterItem key;
        uint32_t nExpected = 0;
        for (int square = 0; square < 64; ++square) {
            state = state * 1'103'515'245u + 12'345u;
            key.squares[square] = static_cast<uint8_t>(state >> 24);
            nExpected += key.squares[square] * static_cast<uint32_t>((square + 1) * (square + 1));
        }
        EXPECT_EQ(RegisterHash(key), nExpected) << i;
    }
}

// Entries in one bucket: a node's room doubles from one entry to eight and stays on removal; the
// ninth entry converts the node into a sorted array of 16, which then doubles; a removal that
// leaves eight or fewer goes back to a node just large enough, a smaller array halves.
TEST(RegisterOneBucket, FindsEveryEntryInEitherForm) {
    // Entries, the first ones removed by RemoveNMovers, entry places after filling and after removal.
    // clang-format off
    const struct { int nEntries, nRemoved; uint64_t nSlots, nSlotsAfterRemoval; } cases[] = {
        {1, 0, 1, 1}, {2, 0, 2, 2}, {3, 1, 4, 4}, {5, 4, 8, 8}, {8, 0, 8, 8},
        {9, 0, 16, 16}, {9, 4, 16, 8}, {16, 0, 16, 16}, {17, 0, 32, 32}, {17, 9, 32, 8}, {17, 14, 32, 4},
        {33, 13, 64, 32}, {33, 33, 64, 0}, {40, 20, 64, 32},
    };
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::Message() << c.nEntries << " entries, " << c.nRemoved << " removed");
        TAggregatedTemporaryChessboardRegister reg(1000, 1024);
        const auto key = [](int i) { return EqualHashKey(static_cast<uint8_t>(i)); };
        // The removed entries hold a mate in 5, the kept ones a mate in 9.
        for (int i = 0; i < c.nEntries; ++i) reg.Insert(i < c.nRemoved ? 5 : 9, key(i), true);
        EXPECT_EQ(reg.Census().nSlots, c.nSlots);
        for (int i = 0; i < c.nEntries; ++i) {
            const auto entry = reg.Find(key(i));
            ASSERT_TRUE(entry) << i;
            EXPECT_EQ(entry->MovesMate, i < c.nRemoved ? 5 : 9);
        }
        EXPECT_FALSE(reg.Find(key(c.nEntries)));

        EXPECT_EQ(reg.RemoveNMovers(5), static_cast<uint32_t>(c.nRemoved));
        EXPECT_EQ(reg.Census().nSlots, c.nSlotsAfterRemoval);
        EXPECT_EQ(reg.ElementCount(), static_cast<uint32_t>(c.nEntries - c.nRemoved));
        for (int i = 0; i < c.nEntries; ++i) EXPECT_EQ(reg.Find(key(i)).has_value(), i >= c.nRemoved) << i;
        // The bucket keeps working in its new form.
        reg.Insert(11, key(63), false);
        EXPECT_EQ(reg.Find(key(63))->MovesNoMate, 11);
    }
}

// Many entries in few buckets, inserted and removed in an order unrelated to the key order.
TEST(RegisterFewBuckets, LargeSortedBucketsStayConsistent) {
    TAggregatedTemporaryChessboardRegister reg(100'000, 4);
    constexpr uint32_t kCount = 3'000;
    auto key = [](uint32_t i) { return NumberedKey(i * 7'919u % 3'001u); };  // a permutation of 0..3000
    for (uint32_t i = 0; i < kCount; ++i) reg.Insert(i % 2 ? 9 : 5, key(i), true);
    EXPECT_EQ(reg.ElementCount(), kCount);
    EXPECT_EQ(reg.RemoveNMovers(5), kCount / 2);
    for (uint32_t i = 0; i < kCount; ++i) EXPECT_EQ(reg.Find(key(i)).has_value(), i % 2 == 1) << i;
    EXPECT_EQ(reg.Census().nEntries, kCount / 2);
}

TEST(RegisterFewBuckets, BucketCountChangeKeepsEveryEntry) {
    TAggregatedTemporaryChessboardRegister reg(100'000, 2);
    for (uint32_t i = 0; i < 500; ++i) reg.Insert(7, NumberedKey(i), i % 2 == 0);
    reg.InsertDoubtful(ConfigurationKey(3, 1), 7, NumberedKey(1), true);
    reg.SetBucketCount(300);
    EXPECT_EQ(reg.BucketCount(), 512u);
    EXPECT_EQ(reg.ElementCount(), 501u);
    for (uint32_t i = 0; i < 500; ++i) {
        const auto entry = reg.Find(NumberedKey(i));
        ASSERT_TRUE(entry);
        EXPECT_EQ(entry->MovesMate, i % 2 == 0 ? 7 : 0);
    }
    EXPECT_EQ(reg.FindDoubtful(ConfigurationKey(3, 1), NumberedKey(1))->MovesMate, 7);
}

TEST(RegisterFewBuckets, ZeroKeyIsAnOrdinaryKey) {
    TAggregatedTemporaryChessboardRegister reg(1000, 1);
    const TChessboardRegisterItem zero{};
    reg.Insert(5, KeyOf({{0, 4}}), true);
    EXPECT_FALSE(reg.Find(zero));
    reg.Insert(7, zero, false);
    EXPECT_EQ(reg.Find(zero)->MovesNoMate, 7);
}

// A large table goes through the buckets that ever held an entry only, and hands its bucket array,
// all 0 again, to the next table of its size: the first and last bucket, and keys spread over
// many lines of buckets.
TEST(RegisterManyBuckets, WalksMeetEveryEntryAndTheArrayComesBackEmpty) {
    constexpr uint32_t kBuckets = 1u << 14;
    std::vector<TChessboardRegisterItem> keys = {TChessboardRegisterItem{},
                                                 KeyOf({{63, 3}, {59, 1}, {0, 255}, {1, 60}})};
    EXPECT_EQ(RegisterHash(keys[1]) % kBuckets, kBuckets - 1);
    for (uint32_t i = 0; i < 300; ++i) keys.push_back(NumberedKey(i * 7'919u));
    for (int round = 0; round < 2; ++round) {
        TAggregatedTemporaryChessboardRegister reg(100'000, kBuckets);
        ASSERT_EQ(reg.BucketCount(), kBuckets);
        EXPECT_EQ(reg.Census().nEntries, 0u) << round;
        for (size_t i = 0; i < keys.size(); ++i) {
            EXPECT_FALSE(reg.Find(keys[i])) << round;
            reg.Insert(i % 2 ? 9 : 5, keys[i], true);
        }
        uint64_t nVisited = 0;
        reg.ForEachEntry([&](const TChessboardRegisterEntry&) { ++nVisited; });
        EXPECT_EQ(nVisited, keys.size());
        EXPECT_EQ(reg.Census().nEntries, keys.size());
        EXPECT_EQ(reg.RemoveNMovers(5), keys.size() / 2);
        for (size_t i = 0; i < keys.size(); ++i) EXPECT_EQ(reg.Find(keys[i]).has_value(), i % 2 == 1) << i;
    }
}

// The register's contents as a whole: statistics texts, iteration for register files, entries
// read back from files, and the size a memory quota allows.
TChessboardRegisterEntry Loaded(uint32_t i, uint16_t nMovesMate, uint16_t nMovesNoMate) {
    TChessboardRegisterEntry entry;
    entry.key = NumberedKey(i);
    entry.MovesMate = nMovesMate;
    entry.MovesNoMate = nMovesNoMate;
    return entry;
}

// One bucket, so that the entry places are known: a node per store, with room for 1, 2 or 4.
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
              "Buckets count = 1 (4.00 elems per bucket)\nElements count = 8\nCurrent capacity = 7\n"
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

namespace moremate {
namespace {

// The registers of the next problem take the memory the last one left, nodes and sorted arrays
// alike, and find none of its entries: every block is written before it is read.
TEST(RegisterMemoryReuse, NextRegisterTakesTheChunksAndSeesNoStaleEntry) {
    constexpr uint32_t kEntries = 400'000;  // about six per bucket, some buckets sorted
    using TRegister = TTemporaryChessboardRegister<0>;
    auto first = std::make_unique<TRegister>(2 * kEntries, kEntries / 8);
    for (uint32_t i = 0; i < kEntries; ++i) first->Insert(5, NumberedKey(i), true);
    first.reset();
    const TChunkStatistics left = RegisterChunkAllocator().Statistics();
    EXPECT_GT(left.nUnusedChunks, 10u);

    TRegister next(2 * kEntries, kEntries / 8);
    for (uint32_t i = 0; i < kEntries; ++i) ASSERT_FALSE(next.Find(NumberedKey(i))) << i;
    for (uint32_t i = 0; i < kEntries; ++i) next.Insert(7, NumberedKey(i), false);
    for (uint32_t i = 0; i < kEntries; i += 7) {
        const std::optional<TChessboardRegisterEntry> entry = next.Find(NumberedKey(i));
        ASSERT_TRUE(entry) << i;
        EXPECT_EQ(entry->MovesMate, 0) << i;
        EXPECT_EQ(entry->MovesNoMate, 7) << i;
    }
    const TMapCensus census = next.Census();
    EXPECT_EQ(census.nEntries, kEntries);
    EXPECT_EQ(census.nFirst, 0u);
    EXPECT_EQ(RegisterChunkAllocator().Statistics().nChunks, left.nChunks);
}

}  // namespace
}  // namespace moremate
