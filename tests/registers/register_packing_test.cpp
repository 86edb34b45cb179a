// Packed register data: single blocks and containers of both block forms decode to what was
// packed; damaged or truncated data are refused.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "register_file_support.h"
#include "registers/register_packing.h"

namespace moremate {
namespace {

using testing::NoiseBytes;

// Half repetitive, half noise, of an odd length.
std::vector<uint8_t> SampleData() {
    std::vector<uint8_t> data(150'001);
    for (size_t i = 0; i < data.size() / 2; ++i) data[i] = static_cast<uint8_t>(i % 68 < 4 ? i / 68 : 0);
    const std::vector<uint8_t> noise = NoiseBytes(data.size() - data.size() / 2, 7);
    std::copy(noise.begin(), noise.end(), data.begin() + data.size() / 2);
    return data;
}

uint32_t U32At(const std::vector<uint8_t>& bytes, size_t nOffset) {
    uint32_t value;
    std::memcpy(&value, bytes.data() + nOffset, sizeof value);
    return value;
}

class RegisterPacking : public ::testing::TestWithParam<TBlockForm> {};

TEST_P(RegisterPacking, BlocksAndContainersRoundTrip) {
    const std::vector<uint8_t> data = SampleData();
    const auto block = CompressBlock(GetParam(), data.data(), data.size());
    ASSERT_TRUE(block);
    EXPECT_EQ(std::string(block->begin(), block->begin() + 4),
              GetParam() == TBlockForm::Lz4 ? "LZ4 " : "LZ4e");
    EXPECT_EQ(U32At(*block, 4), data.size());
    EXPECT_EQ(U32At(*block, 8), block->size());
    EXPECT_EQ(DecompressPacked(block->data(), block->size()), data);

    for (unsigned nThreads : {0u, 1u, 2u, 3u, 7u}) {
        std::vector<TBlockReport> reports;
        const auto container = CompressContainer(GetParam(), data.data(), data.size(), nThreads, &reports);
        ASSERT_TRUE(container);
        EXPECT_EQ(std::string(container->begin(), container->begin() + 4),
                  GetParam() == TBlockForm::Lz4 ? "lz4 " : "lz4e");
        EXPECT_EQ(U32At(*container, 12), std::max(nThreads, 1u));
        ASSERT_EQ(reports.size(), std::max(nThreads, 1u));
        EXPECT_TRUE(nThreads < 2 || reports[0].nOriginal % 16 == 0);
        EXPECT_EQ(DecompressPacked(container->data(), container->size()), data) << nThreads;
    }
}

TEST_P(RegisterPacking, AOneBlockContainerDecodesLikeItsBlock) {
    const std::vector<uint8_t> data = SampleData();
    const auto block = CompressBlock(GetParam(), data.data(), data.size());
    const auto container = CompressContainer(GetParam(), data.data(), data.size(), 1);
    ASSERT_TRUE(block && container);
    EXPECT_TRUE(std::equal(block->begin(), block->end(), container->begin() + kContainerHeaderSize));
    EXPECT_EQ(DecompressPacked(container->data(), container->size()),
              DecompressPacked(block->data(), block->size()));
}

TEST_P(RegisterPacking, SmallAndEmptyDataRoundTrip) {
    for (size_t size : {size_t{0}, size_t{1}, size_t{17}}) {
        const std::vector<uint8_t> data = NoiseBytes(size, 8);
        const auto container = CompressContainer(GetParam(), data.data(), data.size(), 4);
        ASSERT_TRUE(container);
        EXPECT_EQ(DecompressPacked(container->data(), container->size()), data) << size;
    }
}

TEST_P(RegisterPacking, DamagedDataAreRefused) {
    const std::vector<uint8_t> data = SampleData();
    const auto block = CompressBlock(GetParam(), data.data(), data.size());
    const auto container = CompressContainer(GetParam(), data.data(), data.size(), 3);
    ASSERT_TRUE(block && container);
    // The fields read: the sizes of a block; the total size and the block count of a container.
    const std::vector<std::pair<std::vector<uint8_t>, std::vector<size_t>>> cases = {{*block, {4, 8}},
                                                                                     {*container, {4, 12}}};
    for (const auto& [packed, fields] : cases) {
        for (size_t nCut : {size_t{3}, size_t{15}, size_t{31}, packed.size() / 2, packed.size() - 1})
            EXPECT_FALSE(DecompressPacked(packed.data(), nCut)) << nCut;
        for (size_t nField : fields) {
            std::vector<uint8_t> damaged = packed;
            damaged[nField] ^= 0x01;
            damaged[nField + 2] ^= 0x40;
            EXPECT_FALSE(DecompressPacked(damaged.data(), damaged.size())) << nField;
        }
    }
    std::vector<uint8_t> huge = *block;  // a size no sequences of this length can give
    std::fill(huge.begin() + 4, huge.begin() + 8, 0xFF);
    EXPECT_FALSE(DecompressPacked(huge.data(), huge.size()));
    std::vector<uint8_t> wrongMagic = *block;
    wrongMagic[0] = 'X';
    EXPECT_FALSE(DecompressPacked(wrongMagic.data(), wrongMagic.size()));
}

INSTANTIATE_TEST_SUITE_P(Register, RegisterPacking, ::testing::Values(TBlockForm::Lz4, TBlockForm::Lz4e));

TEST(RegisterCompressionLog, LineGivesSizesShareAndRatio) {
    EXPECT_EQ(CompressionLogLine(2, {250, 1'000}),
              "Compressed bucket 2. Packed 250 of 1000 (25%). Compression ratio 75.0%\n");
}

}  // namespace
}  // namespace moremate
