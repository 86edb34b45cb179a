// Packed register data: single blocks and containers of both block forms decode to what was
// packed; damaged or truncated data are refused; the extended block format itself.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "register_test_support.h"
#include "registers/lz4e_codec.h"
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

// A container of one block holds that block after its header; small and empty data round trip too.
TEST(RegisterPacking, BlocksAndContainersRoundTrip) {
    const std::vector<uint8_t> data = SampleData();
    for (const TBlockForm form : {TBlockForm::Lz4, TBlockForm::Lz4e}) {
        const auto block = CompressBlock(form, data.data(), data.size());
        ASSERT_TRUE(block);
        EXPECT_EQ(std::string(block->begin(), block->begin() + 4), form == TBlockForm::Lz4 ? "LZ4 " : "LZ4e");
        EXPECT_EQ(U32At(*block, 4), data.size());
        EXPECT_EQ(U32At(*block, 8), block->size());
        EXPECT_EQ(DecompressPacked(block->data(), block->size()), data);

        for (unsigned nThreads : {0u, 1u, 2u, 3u, 7u}) {
            std::vector<TBlockReport> reports;
            const auto container = CompressContainer(form, data.data(), data.size(), nThreads, &reports);
            ASSERT_TRUE(container);
            EXPECT_EQ(std::string(container->begin(), container->begin() + 4),
                      form == TBlockForm::Lz4 ? "lz4 " : "lz4e");
            EXPECT_EQ(U32At(*container, 12), std::max(nThreads, 1u));
            ASSERT_EQ(reports.size(), std::max(nThreads, 1u));
            EXPECT_TRUE(nThreads < 2 || reports[0].nOriginal % 16 == 0);
            EXPECT_EQ(DecompressPacked(container->data(), container->size()), data) << nThreads;
            const auto body = container->begin() + kContainerHeaderSize;
            EXPECT_TRUE(nThreads != 1 || std::equal(block->begin(), block->end(), body));
        }
        for (size_t size : {size_t{0}, size_t{1}, size_t{17}}) {
            const std::vector<uint8_t> small = NoiseBytes(size, 8);
            const auto container = CompressContainer(form, small.data(), small.size(), 4);
            ASSERT_TRUE(container);
            EXPECT_EQ(DecompressPacked(container->data(), container->size()), small) << size;
        }
    }
}

TEST(RegisterPacking, DamagedDataAreRefused) {
    for (const TBlockForm form : {TBlockForm::Lz4, TBlockForm::Lz4e}) {
        const std::vector<uint8_t> data = SampleData();
        const auto block = CompressBlock(form, data.data(), data.size());
        const auto container = CompressContainer(form, data.data(), data.size(), 3);
        ASSERT_TRUE(block && container);
        // The fields read: the sizes of a block; the total size and the block count of a container.
        const std::vector<std::pair<std::vector<uint8_t>, std::vector<size_t>>> cases = {
            {*block, {4, 8}}, {*container, {4, 12}}};
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
}

TEST(RegisterCompressionLog, LineGivesSizesShareAndRatio) {
    EXPECT_EQ(CompressionLogLine(2, {250, 1'000}),
              "Compressed bucket 2. Packed 250 of 1000 (25%). Compression ratio 75.0%\n");
}

// The extended block format: the encoder's output decodes to the input, far matches use 24-bit
// offsets, and the decoder refuses every damaged input without reading or writing out of bounds.
std::vector<uint8_t> Encode(const std::vector<uint8_t>& data) {
    std::vector<uint8_t> out;
    CLz4eCodec::Compress(data.data(), data.size(), out);
    return out;
}

bool Decodes(const std::vector<uint8_t>& encoded, const std::vector<uint8_t>& expected) {
    std::vector<uint8_t> out(expected.size());
    return CLz4eCodec::Decompress(encoded.data(), encoded.size(), out.data(), out.size()) && out == expected;
}

// A block of noise, zeros up to `nDistance`, the block again, and some noise.
std::vector<uint8_t> RepeatAt(size_t nBlock, size_t nDistance) {
    std::vector<uint8_t> data = NoiseBytes(nBlock, 1);
    data.resize(nDistance);
    data.insert(data.end(), data.begin(), data.begin() + static_cast<ptrdiff_t>(nBlock));
    const std::vector<uint8_t> tail = NoiseBytes(100, 2);
    data.insert(data.end(), tail.begin(), tail.end());
    return data;
}

TEST(RegisterLz4eCodec, RoundTripsOfEveryKindOfData) {
    std::vector<std::vector<uint8_t>> samples = {{},
                                                 {7},
                                                 std::vector<uint8_t>(12, 1),
                                                 std::vector<uint8_t>(13, 1),
                                                 std::vector<uint8_t>(100'000, 0),
                                                 NoiseBytes(5'000, 3)};
    std::vector<uint8_t> records;  // 68-byte records differing in a few bytes, like register data
    for (uint32_t i = 0; i < 3'000; ++i) {
        std::vector<uint8_t> record(68, 0);
        record[0] = static_cast<uint8_t>(i % 15);
        record[4 + i % 64] = 0x48;
        record[4 + (i * 7) % 64] = 0x81;
        records.insert(records.end(), record.begin(), record.end());
    }
    samples.push_back(records);
    for (const std::vector<uint8_t>& sample : samples) {
        const std::vector<uint8_t> encoded = Encode(sample);
        EXPECT_TRUE(Decodes(encoded, sample)) << "size " << sample.size();
    }
    EXPECT_EQ(Encode({}), std::vector<uint8_t>{0});
    EXPECT_LT(Encode(records).size(), records.size() / 4);
}

TEST(RegisterLz4eCodec, IncompressibleDataGrowsByTheLiteralLengthOnly) {
    const std::vector<uint8_t> noise = NoiseBytes(1 << 20, 4);
    const std::vector<uint8_t> encoded = Encode(noise);
    EXPECT_TRUE(Decodes(encoded, noise));
    EXPECT_LE(encoded.size(), noise.size() + noise.size() / 255 + 16);
}

TEST(RegisterLz4eCodec, RepeatsBeyond64KiBBecomeFarMatches) {
    for (size_t nDistance : {size_t{70'000}, size_t{1} << 20, size_t{CLz4eCodec::kMaxFarOffset} - 200}) {
        const std::vector<uint8_t> data = RepeatAt(5'000, nDistance);
        const std::vector<uint8_t> encoded = Encode(data);
        EXPECT_TRUE(Decodes(encoded, data));
        // The zeros cost their length bytes, the repeated block a few bytes, not 5,000 literals.
        EXPECT_LT(encoded.size(), 5'000 + nDistance / 255 + 300) << nDistance;
    }
    const std::vector<uint8_t> tooFar = RepeatAt(5'000, CLz4eCodec::kMaxFarOffset + 1'000);
    const std::vector<uint8_t> encoded = Encode(tooFar);
    EXPECT_TRUE(Decodes(encoded, tooFar));
    EXPECT_GT(encoded.size(), 10'000u);
}

TEST(RegisterLz4eCodec, DecodesAHandWrittenFarMatch) {
    // 70,000 literals, then 300 bytes from 70,000 back: code 15, b = 0x80 | 127, 300 - 4 - 15 - 127
    // = 154 more, a 3-byte offset; then an empty literal run.
    const std::vector<uint8_t> literals = NoiseBytes(70'000, 5);
    std::vector<uint8_t> encoded = {0xFF};
    size_t nRest = literals.size() - 15;
    for (; nRest >= 255; nRest -= 255) encoded.push_back(255);
    encoded.push_back(static_cast<uint8_t>(nRest));
    encoded.insert(encoded.end(), literals.begin(), literals.end());
    encoded.insert(encoded.end(), {0xFF, 154, 0x70, 0x11, 0x01, 0x00});
    std::vector<uint8_t> expected = literals;
    expected.insert(expected.end(), literals.begin(), literals.begin() + 300);
    EXPECT_TRUE(Decodes(encoded, expected));
}

TEST(RegisterLz4eCodec, RefusesDamagedInput) {
    const std::vector<uint8_t> data = RepeatAt(3'000, 80'000);
    const std::vector<uint8_t> encoded = Encode(data);
    std::vector<uint8_t> out(data.size());
    for (size_t nCut = 0; nCut < encoded.size(); nCut += 1 + nCut / 8) {
        EXPECT_FALSE(CLz4eCodec::Decompress(encoded.data(), nCut, out.data(), out.size())) << nCut;
    }
    EXPECT_FALSE(CLz4eCodec::Decompress(encoded.data(), encoded.size(), out.data(), out.size() - 1));
    std::vector<uint8_t> larger(data.size() + 1);
    EXPECT_FALSE(CLz4eCodec::Decompress(encoded.data(), encoded.size(), larger.data(), larger.size()));
    // An offset reaching before the start, and a zero offset.
    EXPECT_FALSE(
        CLz4eCodec::Decompress(std::vector<uint8_t>{0x10, 'a', 0x05, 0x00, 0x00}.data(), 5, out.data(), 10));
    EXPECT_FALSE(
        CLz4eCodec::Decompress(std::vector<uint8_t>{0x10, 'a', 0x00, 0x00, 0x00}.data(), 5, out.data(), 5));
}

TEST(RegisterLz4eCodec, CorruptedBytesNeverBreakTheDecoder) {
    const std::vector<uint8_t> data = RepeatAt(3'000, 80'000);
    const std::vector<uint8_t> encoded = Encode(data);
    const std::vector<uint8_t> noise = NoiseBytes(2'000, 6);
    std::vector<uint8_t> out(data.size());
    for (size_t i = 0; i + 1 < noise.size(); i += 2) {
        std::vector<uint8_t> damaged = encoded;
        damaged[(noise[i] << 8 | noise[i + 1]) % damaged.size()] ^= static_cast<uint8_t>(1 + noise[i + 1]);
        CLz4eCodec::Decompress(damaged.data(), damaged.size(), out.data(), out.size());
    }
}

}  // namespace
}  // namespace moremate
