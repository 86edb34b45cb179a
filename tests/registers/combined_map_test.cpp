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

struct THashCase {
    const char* name;
    TChessboardRegisterItem key;
    uint32_t nHash;
};

class RegisterHashValue : public ::testing::TestWithParam<THashCase> {};

TEST_P(RegisterHashValue, WeighsEachByteBySquareOfItsPlace) {
    EXPECT_EQ(RegisterHash(GetParam().key), GetParam().nHash);
}

TChessboardRegisterItem AllBytes(uint8_t value) {
    TChessboardRegisterItem item;
    for (uint8_t& b : item.squares) b = value;
    return item;
}

INSTANTIATE_TEST_SUITE_P(
    Register, RegisterHashValue,
    ::testing::Values(THashCase{"ZeroKey", {}, 0}, THashCase{"LastByteOne", KeyOf({{63, 1}}), 4096},
                      THashCase{"FirstByteOne", KeyOf({{0, 1}}), 1},
                      THashCase{"SecondByteOne", KeyOf({{1, 1}}), 4},
                      THashCase{"TwoBytes", KeyOf({{0, 0x41}, {63, 0x81}}), 0x41 + 0x81 * 4096},
                      // 255 * (1 + 4 + ... + 4096) = 255 * 89440
                      THashCase{"AllBytes255", AllBytes(255), 22'807'200}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(RegisterHashValue, EqualHashKeysCollide) {
    for (uint8_t i = 0; i < 64; ++i) EXPECT_EQ(RegisterHash(EqualHashKey(i)), 252u);
}

// Entries in one bucket: the ninth converts the node into a sorted array of 16, which then
// doubles; a removal that leaves eight or fewer goes back to a node, a smaller array halves.
struct TBucketCase {
    int nEntries;     // all in one bucket
    int nRemoved;     // the first ones, by RemoveNMovers
    uint64_t nSlots;  // entry places after filling
    uint64_t nSlotsAfterRemoval;
};

class OneBucket : public ::testing::TestWithParam<TBucketCase> {};

TEST_P(OneBucket, FindsEveryEntryInEitherForm) {
    const TBucketCase& c = GetParam();
    TAggregatedTemporaryChessboardRegister reg(1000, 1024);
    // The removed entries hold a mate in 5, the kept ones a mate in 9.
    for (int i = 0; i < c.nEntries; ++i)
        reg.Insert(i < c.nRemoved ? 5 : 9, EqualHashKey(static_cast<uint8_t>(i)), true);
    EXPECT_EQ(reg.Census().nSlots, c.nSlots);
    for (int i = 0; i < c.nEntries; ++i) {
        const auto entry = reg.Find(EqualHashKey(static_cast<uint8_t>(i)));
        ASSERT_TRUE(entry) << i;
        EXPECT_EQ(entry->MovesMate, i < c.nRemoved ? 5 : 9);
    }
    EXPECT_FALSE(reg.Find(EqualHashKey(static_cast<uint8_t>(c.nEntries))));

    EXPECT_EQ(reg.RemoveNMovers(5), static_cast<uint32_t>(c.nRemoved));
    EXPECT_EQ(reg.Census().nSlots, c.nSlotsAfterRemoval);
    EXPECT_EQ(reg.ElementCount(), static_cast<uint32_t>(c.nEntries - c.nRemoved));
    for (int i = 0; i < c.nEntries; ++i) {
        EXPECT_EQ(reg.Find(EqualHashKey(static_cast<uint8_t>(i))).has_value(), i >= c.nRemoved) << i;
    }
    // The bucket keeps working in its new form.
    reg.Insert(11, EqualHashKey(63), false);
    EXPECT_EQ(reg.Find(EqualHashKey(63))->MovesNoMate, 11);
}

INSTANTIATE_TEST_SUITE_P(Register, OneBucket,
                         ::testing::Values(TBucketCase{8, 0, 8, 8}, TBucketCase{9, 0, 16, 16},
                                           TBucketCase{9, 4, 16, 8}, TBucketCase{16, 0, 16, 16},
                                           TBucketCase{17, 0, 32, 32}, TBucketCase{17, 9, 32, 8},
                                           TBucketCase{33, 13, 64, 32}, TBucketCase{33, 33, 64, 0},
                                           TBucketCase{40, 20, 64, 32}));

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
