// Images damaged in every field a reader relies on are refused with a message saying what is
// wrong; images with bytes changed at random are refused or read without leaving their memory.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "buffer_test_data.h"
#include "core/chess_exception.h"
#include "precalc/buffers/packed_image.h"
#include "precalc/buffers/random_access_buffer.h"

namespace moremate::RandomAccessLZWBuffer {
namespace {

using testing::EndgameLikeElements;
using testing::RandomBytes;

constexpr uint32_t kBlock = 8192;
constexpr uint32_t kLargeBlock = 16384;

// Three read-only blocks of 16,384 bytes of 2-byte elements: the first packs, the second is kept
// as it is, the third is short.
std::vector<uint8_t> SoundImage() {
    std::vector<uint8_t> bytes = EndgameLikeElements(kLargeBlock / 2, 2, 1);
    const std::vector<uint8_t> noise = RandomBytes(kLargeBlock, 2);
    bytes.insert(bytes.end(), noise.begin(), noise.end());
    bytes.resize(bytes.size() + 100);
    return PackBuffer(TPacking::Lzw, bytes, 2, false)->Image();
}

void SetU64(std::vector<uint8_t>& image, size_t nAt, uint64_t nValue) {
    WriteU64(image.data() + nAt, nValue);
}

TEST(DamagedPackedImage, IsRefusedSayingWhatIsWrong) {
    struct TCase {
        std::string sDamage;
        std::function<void(std::vector<uint8_t>&)> damage;
        std::string sMessage;
    };
    const std::vector<TCase> cases = {
        {"cut inside the header", [](auto& image) { image.resize(20); },
         "Damaged packed data: the image has 20 bytes, fewer than its header"},
        {"unknown block size", [](auto& image) { image[17] = 0x10; },
         "Damaged packed data: block size 4096 is neither 8192 nor 16384"},
        {"odd unpacked size", [](auto& image) { SetU64(image, 8, 3 * 16384 - 1); },
         "Damaged packed data: unpacked size 49151 is not a multiple of the element size 2"},
        {"reserved byte set", [](auto& image) { image[25] = 1; },
         "Damaged packed data: reserved header bytes are not 0"},
        {"offset table beyond the image", [](auto& image) { SetU64(image, 8, uint64_t{1} << 50); },
         "Damaged packed data: the offset table of 68719476736 blocks does not fit in"},
        {"end beyond the image", [](auto& image) { SetU64(image, 0, image.size() + 1); },
         "Damaged packed data: end of used data"},
        {"end inside the offset table", [](auto& image) { SetU64(image, 0, 40); },
         "Damaged packed data: end of used data 40 lies outside 56.."},
        {"block inside the offset table", [](auto& image) { SetU64(image, 32, 16); },
         "Damaged packed data: block 0 starts at 16, outside the used data"},
        {"block at the end of the data",
         [](auto& image) { SetU64(image, 40, ReadU64(image.data()) | kKeptAsItIs); },
         "Damaged packed data: block 1 starts at"},
        {"two blocks at one place", [](auto& image) { SetU64(image, 40, ReadU64(image.data() + 32)); },
         "Damaged packed data: blocks 0 and 1 start at the same offset 56"},
        {"block kept as it is without room",
         [](auto& image) { SetU64(image, 32, ReadU64(image.data() + 32) | kKeptAsItIs); },
         "Damaged packed data: block 0 kept as it is has"},
    };
    for (const TCase& c : cases) {
        std::vector<uint8_t> image = SoundImage();
        c.damage(image);
        try {
            OpenPackedBuffer(TPacking::Lzw, image, 2);
            ADD_FAILURE() << c.sDamage << ": no exception";
        } catch (const ChessException& e) {
            EXPECT_EQ(std::string(e.what()).substr(0, c.sMessage.size()), c.sMessage) << c.sDamage;
        }
    }
    // A sound image of another block size is not opened as this shape.
    EXPECT_THROW((CRandomAccessLZWBuffer<uint16_t, kBlock, 0, 8, 1, 0>::Open(SoundImage())), ChessException);
}

// Random bytes changed anywhere: the image is refused, or each element is read or refused; never
// a read outside the image (the AddressSanitizer build checks that).
TEST(DamagedPackedImage, ChangedAtRandomIsRefusedOrReadSafely) {
    std::mt19937 random(3);
    for (const TPacking packing : {TPacking::Lzw, TPacking::Lz4}) {
        const std::vector<uint8_t> bytes = EndgameLikeElements(3 * kBlock / 2, 2, 5);
        const std::vector<uint8_t> sound = PackBuffer(packing, bytes, 2, true)->Image();
        for (int n = 0; n < 300; ++n) {
            std::vector<uint8_t> image = sound;
            for (int k = 0; k < 1 + n % 4; ++k)
                image[random() % image.size()] = static_cast<uint8_t>(random());
            try {
                const auto pBuffer = OpenPackedBuffer(packing, image, 2);
                for (uint64_t i = 0; i < pBuffer->ElementCount(); i += 97) {
                    try {
                        pBuffer->Element(i);
                    } catch (const ChessException&) {
                    }
                }
            } catch (const ChessException&) {
            }
        }
    }
}

}  // namespace
}  // namespace moremate::RandomAccessLZWBuffer
