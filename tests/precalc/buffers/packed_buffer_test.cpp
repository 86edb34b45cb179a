// Packed buffers of every shape in both packings: round trips, the last block, updates (in place,
// moved behind the data, into spare room), the factories' choices and damaged blocks found while
// reading.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "buffer_test_data.h"
#include "core/chess_exception.h"
#include "precalc/buffers/packed_image.h"
#include "precalc/buffers/random_access_buffer.h"
#include "settings/reporter.h"

namespace moremate::RandomAccessLZWBuffer {
namespace {

using testing::ElementOf;
using testing::EndgameLikeElements;
using testing::RandomBytes;

template <class TBuffer>
class PackedBufferShapes : public ::testing::Test {};

using TShapes = ::testing::Types<
    CRandomAccessLZWBuffer<uint8_t, 8192, 0, 8, 1, 0>, CRandomAccessLZWBuffer<uint8_t, 16384, 0, 8, 1, 0>,
    CRandomAccessLZWBuffer<uint8_t, 16384, 0, 1, 0, 0>, CRandomAccessLZWBuffer<uint16_t, 8192, 0, 8, 1, 0>,
    CRandomAccessLZWBuffer<uint16_t, 16384, 0, 8, 1, 0>, CRandomAccessLZWBuffer<uint16_t, 16384, 0, 1, 0, 0>,
    CRandomAccessLz4Buffer<uint8_t, 8192, 0, 8, 1, 0>, CRandomAccessLz4Buffer<uint8_t, 16384, 0, 8, 1, 0>,
    CRandomAccessLz4Buffer<uint8_t, 16384, 0, 1, 0, 0>, CRandomAccessLz4Buffer<uint16_t, 8192, 0, 8, 1, 0>,
    CRandomAccessLz4Buffer<uint16_t, 16384, 0, 8, 1, 0>, CRandomAccessLz4Buffer<uint16_t, 16384, 0, 1, 0, 0>>;
TYPED_TEST_SUITE(PackedBufferShapes, TShapes);

// Every element read one by one, the whole buffer unpacked, and the same after reopening its image.
template <class TBuffer>
void ExpectHolds(TBuffer& buffer, const std::vector<uint8_t>& bytes) {
    const unsigned nSize = TBuffer::kShape.nElementSize;
    ASSERT_EQ(buffer.ElementCount(), bytes.size() / nSize);
    for (uint64_t i = 0; i < buffer.ElementCount(); ++i)
        ASSERT_EQ(buffer.Element(i), ElementOf(bytes, nSize, i)) << "element " << i;
    EXPECT_EQ(buffer.Unpack(nullptr, kEnglish), bytes);
    const auto pReopened = TBuffer::Open(buffer.Image());
    EXPECT_EQ(pReopened->Unpack(nullptr, kEnglish), bytes);
}

TYPED_TEST(PackedBufferShapes, RoundTrips) {
    const uint32_t nBlock = TypeParam::kShape.nBlockSize;
    const unsigned nSize = TypeParam::kShape.nElementSize;
    struct TCase {
        std::string sName;
        std::vector<uint8_t> bytes;
    };
    const TCase cases[] = {
        {"empty", {}},
        {"one element", std::vector<uint8_t>(nSize, 7)},
        {"random, partial last block", RandomBytes(2 * nBlock + 6, 3)},
        {"endgame-like, whole blocks", EndgameLikeElements(3 * nBlock / nSize, nSize, 8)},
        {"endgame-like, partial last block", EndgameLikeElements(5 * nBlock / nSize / 2 + 1, nSize, 9)},
        {"all zero", std::vector<uint8_t>(4 * nBlock)},
    };
    for (const TCase& c : cases) {
        SCOPED_TRACE(c.sName);
        const auto pBuffer = TypeParam::Pack(c.bytes);
        ExpectHolds(*pBuffer, c.bytes);
    }
}

TYPED_TEST(PackedBufferShapes, PacksEndgameLikeDataSmall) {
    const unsigned nSize = TypeParam::kShape.nElementSize;
    const std::vector<uint8_t> bytes = EndgameLikeElements(200'000, nSize, 2);
    const auto pBuffer = TypeParam::Pack(bytes);
    EXPECT_LT(pBuffer->Image().size(), bytes.size() / 2);
}

// A size that divides into blocks ends with a full block, not an empty one.
TYPED_TEST(PackedBufferShapes, WholeBlocksEndWithAFullBlock) {
    const uint32_t nBlock = TypeParam::kShape.nBlockSize;
    const unsigned nSize = TypeParam::kShape.nElementSize;
    std::vector<uint8_t> bytes(3 * nBlock);
    bytes[bytes.size() - nSize] = 9;
    const auto pBuffer = TypeParam::Pack(bytes);
    const uint64_t nFirstBlock = ReadU64(pBuffer->Image().data() + kImageHeaderSize) & ~kKeptAsItIs;
    EXPECT_EQ(nFirstBlock, TableEnd(3));
    EXPECT_EQ(pBuffer->Element(pBuffer->ElementCount() - 1), 9);
    EXPECT_EQ(pBuffer->Element(pBuffer->ElementCount() - 2), 0);
}

TYPED_TEST(PackedBufferShapes, UpdatesReadBackOrAreRefused) {
    const unsigned nSize = TypeParam::kShape.nElementSize;
    std::vector<uint8_t> bytes = EndgameLikeElements(50'000, nSize, 4);
    const auto pBuffer = TypeParam::Pack(bytes);
    if (!TypeParam::kShape.bUpdatable) {
        const std::string sClass =
            TypeParam::kShape.packing == TPacking::Lzw ? "CRandomAccessLZWBuffer" : "CRandomAccessLz4Buffer";
        try {
            pBuffer->Update(0, 1);
            FAIL() << "no exception";
        } catch (const ChessException& e) {
            EXPECT_EQ(std::string(e.what()),
                      "Call to Update for non-update'able instance of " + sClass + ".");
        }
        return;
    }
    // Random values all over make blocks outgrow their room and move behind the data.
    std::mt19937 random(6);
    for (int n = 0; n < 3000; ++n) {
        const uint64_t i = random() % pBuffer->ElementCount();
        const uint16_t nValue = static_cast<uint16_t>(random() % (nSize == 1 ? 256 : 65536));
        ASSERT_TRUE(pBuffer->Update(i, nValue));
        std::memcpy(&bytes[i * nSize], &nValue, nSize);  // little-endian
        ASSERT_EQ(pBuffer->Element(i), nValue);
    }
    ExpectHolds(*pBuffer, bytes);
}

TYPED_TEST(PackedBufferShapes, ABlockFoundDamagedWhileReadingIsReported) {
    const std::vector<uint8_t> bytes(3 * TypeParam::kShape.nBlockSize);
    std::vector<uint8_t> image = TypeParam::Pack(bytes)->Image();
    // All ones: LZW codes beyond the preset, an LZ4 sequence count beyond the block's room.
    const uint64_t nSecond = ReadU64(image.data() + kImageHeaderSize + 8);
    std::fill(image.begin() + static_cast<ptrdiff_t>(nSecond),
              image.begin() + static_cast<ptrdiff_t>(nSecond) + 4, uint8_t{0xFF});
    const auto pBuffer = TypeParam::Open(image);
    const std::string sMessage = std::string("Error unpacking ") +
                                 (TypeParam::kShape.packing == TPacking::Lzw ? "LZW" : "LZ4") + " data";
    EXPECT_EQ(pBuffer->Element(0), 0);
    EXPECT_THROW(pBuffer->Element(TypeParam::kShape.nBlockSize / TypeParam::kShape.nElementSize),
                 ChessException);
    CRecordingReporter reporter;
    EXPECT_FALSE(pBuffer->Unpack(&reporter, kEnglish));
    ASSERT_EQ(reporter.Reports().size(), 1u);
    EXPECT_EQ(reporter.Reports()[0].sTitle, ReportTitle(ReportKind::Error, kEnglish));
    EXPECT_EQ(reporter.Reports()[0].sText, sMessage);
}

TEST(PackedBuffer, BlocksMoveIntoSpareRoomWithoutGrowingTheImage) {
    // Blocks keep 1 KiB for repacking; two blocks' worth of spare room follows the data.
    using TBuffer = CRandomAccessLZWBuffer<uint8_t, 8192, 2, 8, 1, 0>;
    std::vector<uint8_t> bytes(4 * 8192);
    const auto pBuffer = TBuffer::Pack(bytes);
    const size_t nImage = pBuffer->Image().size();
    const uint64_t nEnd = ReadU64(pBuffer->Image().data());
    const std::vector<uint8_t> noise = RandomBytes(1000, 12);
    for (size_t i = 0; i < noise.size(); ++i) {
        ASSERT_TRUE(pBuffer->Update(8192 + i, noise[i]));
        bytes[8192 + i] = noise[i];
    }
    EXPECT_EQ(pBuffer->Image().size(), nImage);
    EXPECT_GT(ReadU64(pBuffer->Image().data()), nEnd);
    ExpectHolds(*pBuffer, bytes);
}

// Block 0 grows and moves three times; block 2 then moves into a room block 0 has left.
TEST(PackedBuffer, AMovingBlockTakesARoomLeftByAnother) {
    using TBuffer = CRandomAccessLZWBuffer<uint8_t, 8192, 0, 8, 1, 0>;
    std::vector<uint8_t> bytes(4 * 8192);
    const auto pBuffer = TBuffer::Pack(bytes);
    const auto end = [&] { return ReadU64(pBuffer->Image().data()); };
    const auto offset = [&](uint64_t nBlock) { return ReadU64(pBuffer->Image().data() + TableEnd(nBlock)); };
    const std::vector<uint8_t> noise = RandomBytes(8192, 13);
    std::vector<uint64_t> ends = {end()};
    for (size_t i = 0; ends.size() < 4; ++i) {
        ASSERT_TRUE(pBuffer->Update(i, noise[i]));
        bytes[i] = noise[i];
        if (end() != ends.back()) ends.push_back(end());
    }
    const uint64_t nBlock2At = offset(2);
    for (size_t i = 0; offset(2) == nBlock2At; ++i) {
        ASSERT_TRUE(pBuffer->Update(2 * 8192 + i, noise[i]));
        bytes[2 * 8192 + i] = noise[i];
    }
    EXPECT_EQ(end(), ends.back());
    EXPECT_LT(offset(2), ends.back());
    ExpectHolds(*pBuffer, bytes);
}

TEST(PackedBuffer, RefusesIndexesBeyondItsElementsAndValuesBeyondItsElementSize) {
    const auto pBuffer = CRandomAccessLZWBuffer<uint8_t, 8192, 0, 8, 1, 0>::Pack(std::vector<uint8_t>(100));
    EXPECT_THROW(pBuffer->Element(100), ChessException);
    EXPECT_THROW(pBuffer->Update(100, 1), ChessException);
    EXPECT_THROW(pBuffer->Update(5, 256), ChessException);
    using TWords = CRandomAccessLZWBuffer<uint16_t, 8192, 0, 8, 1, 0>;
    EXPECT_THROW(TWords::Pack(std::vector<uint8_t>(7)), ChessException);
}

// The shape follows the element size and the wish for updates; large read-only blocks are opened
// for updates only when asked.
TEST(PackedBufferFactories, ChooseTheShapeFromElementSizeAndUpdates) {
    struct TCase {
        TPacking packing;
        unsigned nElementSize;
        bool bUpdatable;
        uint32_t nBlockSize;
    };
    const std::vector<uint8_t> bytes = EndgameLikeElements(20'000, 2, 1);
    for (const TCase& c : {TCase{TPacking::Lzw, 1, true, 8192}, TCase{TPacking::Lzw, 2, false, 16384},
                           TCase{TPacking::Lz4, 2, true, 8192}, TCase{TPacking::Lz4, 1, false, 16384}}) {
        const auto pBuffer = PackBuffer(c.packing, bytes, c.nElementSize, c.bUpdatable);
        EXPECT_EQ(BlockSizeOf(pBuffer->Image()), c.nBlockSize);
        EXPECT_EQ(pBuffer->ElementCount(), bytes.size() / c.nElementSize);
        EXPECT_EQ(pBuffer->ElementSize(), c.nElementSize);
        const auto pOpened = OpenPackedBuffer(c.packing, pBuffer->Image(), c.nElementSize);
        EXPECT_EQ(pOpened->Unpack(nullptr, kEnglish), bytes);
        if (c.bUpdatable) {
            EXPECT_TRUE(pOpened->Update(0, 3));
            continue;
        }
        EXPECT_THROW(pOpened->Update(0, 3), ChessException);
        const auto pForUpdates = OpenPackedBuffer(c.packing, pBuffer->Image(), c.nElementSize, true);
        EXPECT_TRUE(pForUpdates->Update(0, 3));
        EXPECT_EQ(pForUpdates->Element(0), 3);
    }
    EXPECT_THROW(PackBuffer(TPacking::Lz4, bytes, 4, false), ChessException);
}

}  // namespace
}  // namespace moremate::RandomAccessLZWBuffer
