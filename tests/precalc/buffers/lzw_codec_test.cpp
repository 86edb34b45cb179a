// The LZW variant on single blocks: the preset, the bit order, the growth limits of the
// dictionary, round trips and damaged blocks.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "buffer_test_data.h"
#include "precalc/buffers/lzw_codec.h"
#include "precalc/buffers/lzw_dictionary.h"

namespace moremate::RandomAccessLZWBuffer {
namespace {

std::vector<uint8_t> Packed(const TLzwPreset& preset, const std::vector<uint8_t>& bytes, size_t nRoom) {
    std::vector<uint8_t> out(nRoom);
    out.resize(LzwPack(preset, bytes.data(), bytes.size(), out.data(), out.size()));
    return out;
}

std::vector<uint8_t> RoundTrip(const TLzwPreset& preset, const std::vector<uint8_t>& bytes) {
    const std::vector<uint8_t> packed = Packed(preset, bytes, 2 * bytes.size() + 16);
    EXPECT_FALSE(packed.empty());
    std::vector<uint8_t> out(bytes.size());
    EXPECT_TRUE(LzwUnpack(preset, packed.data(), packed.size(), out.data(), out.size()));
    return out;
}

TEST(LzwPreset, EntriesAndWidthForEachKindOfFill) {
    struct TCase {
        uint8_t nFill;
        uint16_t nEntries;
    };
    // A fill from 1 to 20 makes the pair (f, f) and the run of two the same string.
    for (const TCase c : {TCase{0, 403}, TCase{1, 402}, TCase{20, 402}, TCase{21, 403}, TCase{255, 403}}) {
        const CLzwEncoderDictionary preset = CLzwEncoderDictionary::Preset(c.nFill);
        EXPECT_EQ(preset.Growth().nCount, c.nEntries) << int{c.nFill};
        EXPECT_EQ(preset.Growth().nWidth, 9) << int{c.nFill};
    }
}

TEST(LzwDictionary, StopsGrowingAtItsLimits) {
    struct TCase {
        size_t nLength;  // of the strings added
        uint16_t nEntries;
        uint8_t nWidth;
    };
    // Two-byte strings run into the entry limit, 255-byte strings into the string store's.
    const size_t nPresetStore = 256 + 2 * 20 + (128 * 129 / 2 - 1);
    const uint16_t nStoreLimited = static_cast<uint16_t>(403 + (kLzwStoreSize - nPresetStore) / 255);
    for (const TCase c : {TCase{2, 2048, 12}, TCase{255, nStoreLimited, 9}}) {
        CLzwEncoderDictionary dictionary = CLzwEncoderDictionary::Preset(0);
        std::vector<uint8_t> bytes(c.nLength, 0x80);
        for (int i = 0; i < 3000; ++i) {
            bytes[0] = static_cast<uint8_t>(0x80 + i / 256);
            bytes[1] = static_cast<uint8_t>(i);
            dictionary.Add(dictionary.LongestMatch(bytes.data(), bytes.size()).nInsertAt, bytes.data(),
                           bytes.size());
        }
        EXPECT_EQ(dictionary.Growth().nCount, c.nEntries) << c.nLength;
        EXPECT_EQ(dictionary.Growth().nWidth, c.nWidth) << c.nLength;
    }
}

TEST(LzwCodec, WritesCodesLeastSignificantBitFirst) {
    struct TCase {
        std::vector<uint8_t> bytes;
        std::vector<uint8_t> packed;
    };
    // With fill 0, byte 255 has code 275 (20 pairs come before it) and byte 1 code 1.
    for (const TCase& c : {TCase{{0xFF}, {0x13, 0x01}}, TCase{{0xFF, 0x01}, {0x13, 0x03, 0x00}}}) {
        const TLzwPreset preset(0);
        EXPECT_EQ(Packed(preset, c.bytes, 16), c.packed);
    }
}

TEST(LzwCodec, ABlockOfTheFillByteTakesAFewCodes) {
    // Runs of 128, 129, ... 180 bytes (each run adds the next longer one), then a run of 30:
    // 54 codes of 9 bits.
    const TLzwPreset preset(3);
    const std::vector<uint8_t> block(8192, 3);
    EXPECT_EQ(Packed(preset, block, block.size()).size(), 61u);
    EXPECT_EQ(RoundTrip(preset, block), block);
}

TEST(LzwCodec, RoundTripsOfAllKindsOfBlocks) {
    std::mt19937 random(5);
    std::vector<uint8_t> fewSymbols(16384);  // fills the dictionary's 2,048 entries
    for (uint8_t& b : fewSymbols) b = static_cast<uint8_t>(random() % 4);
    std::vector<uint8_t> longRuns;  // runs beyond the 255 bytes an entry may hold
    while (longRuns.size() < 16384)
        longRuns.insert(longRuns.end(), 1 + random() % 700, static_cast<uint8_t>(random()));
    std::vector<uint8_t> everyValue(8192);
    for (size_t i = 0; i < everyValue.size(); ++i) everyValue[i] = static_cast<uint8_t>(i * 7);
    const std::vector<uint8_t> endgameLike = testing::EndgameLikeElements(8192, 1, 9);
    const std::vector<uint8_t>* const blocks[] = {&fewSymbols, &longRuns, &everyValue, &endgameLike};
    for (const std::vector<uint8_t>* pBytes : blocks) {
        for (const uint8_t nFill : {uint8_t{0}, uint8_t{1}, uint8_t{200}}) {
            const TLzwPreset preset(nFill);
            EXPECT_EQ(RoundTrip(preset, *pBytes), *pBytes) << int{nFill};
        }
    }
}

TEST(LzwCodec, RefusesDamagedAndTruncatedBlocks) {
    const TLzwPreset preset(0);
    const std::vector<uint8_t> bytes = testing::EndgameLikeElements(8192, 1, 4);
    const std::vector<uint8_t> packed = Packed(preset, bytes, bytes.size());
    std::vector<uint8_t> out(bytes.size() + 1);
    // Cut short, asked for more bytes than it holds, all ones (codes beyond the dictionary).
    EXPECT_FALSE(LzwUnpack(preset, packed.data(), packed.size() / 2, out.data(), bytes.size()));
    EXPECT_FALSE(LzwUnpack(preset, packed.data(), packed.size(), out.data(), bytes.size() + 1));
    const std::vector<uint8_t> ones(packed.size(), 0xFF);
    EXPECT_FALSE(LzwUnpack(preset, ones.data(), ones.size(), out.data(), bytes.size()));
}

}  // namespace
}  // namespace moremate::RandomAccessLZWBuffer
