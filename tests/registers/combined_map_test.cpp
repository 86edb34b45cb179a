// The hash, and the two bucket forms: nodes of eight and sorted arrays, growing and shrinking.
#include <gtest/gtest.h>

#include <cstdint>

#include "register_test_support.h"
#include "registers/aggregated_register.h"

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
}

// Entries in one bucket: the ninth converts the node into a sorted array of 16, which then
// doubles; a removal that leaves eight or fewer goes back to a node, a smaller array halves.
TEST(RegisterOneBucket, FindsEveryEntryInEitherForm) {
    // Entries, the first ones removed by RemoveNMovers, entry places after filling and after removal.
    // clang-format off
    const struct { int nEntries, nRemoved; uint64_t nSlots, nSlotsAfterRemoval; } cases[] = {
        {8, 0, 8, 8}, {9, 0, 16, 16}, {9, 4, 16, 8}, {16, 0, 16, 16}, {17, 0, 32, 32}, {17, 9, 32, 8},
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
    reg.Insert(5, KeyOf({{0, 4}}), true);
    EXPECT_FALSE(reg.Find({}));
    reg.Insert(7, {}, false);
    EXPECT_EQ(reg.Find({})->MovesNoMate, 7);
}

}  // namespace
}  // namespace moremate
