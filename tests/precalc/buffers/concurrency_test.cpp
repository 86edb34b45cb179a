// Many threads reading one buffer at once, and reading while another thread updates it (the
// ThreadSanitizer build checks these for races).
#include <gtest/gtest.h>

#include <atomic>
#include <random>
#include <thread>
#include <vector>

#include "buffer_test_data.h"
#include "precalc/buffers/packed_buffer.h"

namespace moremate::RandomAccessLZWBuffer {
namespace {

using testing::ElementOf;
using testing::EndgameLikeElements;

constexpr unsigned kThreads = 4;
constexpr int kReadsPerThread = 20'000;

TEST(ConcurrentPackedBuffer, ThreadsReadTheirElementsAtOnce) {
    for (const TPacking packing : {TPacking::Lzw, TPacking::Lz4}) {
        for (const unsigned nSize : {1u, 2u}) {
            const std::vector<uint8_t> bytes = EndgameLikeElements(300'000, nSize, 7);
            const auto pBuffer = PackBuffer(packing, bytes, nSize, nSize == 2);
            std::atomic<int> nWrong = 0;
            std::vector<std::thread> threads;
            for (unsigned t = 0; t < kThreads; ++t) {
                threads.emplace_back([&, t] {
                    std::mt19937 random(t);
                    for (int n = 0; n < kReadsPerThread; ++n) {
                        const uint64_t i = random() % pBuffer->ElementCount();
                        if (pBuffer->Element(i) != ElementOf(bytes, nSize, i)) ++nWrong;
                    }
                });
            }
            for (std::thread& thread : threads) thread.join();
            EXPECT_EQ(nWrong, 0);
        }
    }
}

// The writer changes the first half only; readers check the second half and whatever they see
// of the first is a value it held at some time.
TEST(ConcurrentPackedBuffer, ReadersMeetAWriter) {
    for (const TPacking packing : {TPacking::Lzw, TPacking::Lz4}) {
        const std::vector<uint8_t> bytes(200'000, 0);
        const auto pBuffer = PackBuffer(packing, bytes, 1, true);
        const uint64_t nHalf = pBuffer->ElementCount() / 2;
        std::atomic<int> nWrong = 0;
        std::vector<std::thread> threads;
        threads.emplace_back([&] {
            std::mt19937 random(99);
            for (int n = 0; n < 2'000; ++n) {
                if (!pBuffer->Update(random() % nHalf, 5)) ++nWrong;
            }
        });
        for (unsigned t = 0; t < kThreads - 1; ++t) {
            threads.emplace_back([&, t] {
                std::mt19937 random(t);
                for (int n = 0; n < kReadsPerThread; ++n) {
                    const uint64_t i = random() % pBuffer->ElementCount();
                    const uint16_t nValue = pBuffer->Element(i);
                    if (nValue != 0 && !(i < nHalf && nValue == 5)) ++nWrong;
                }
            });
        }
        for (std::thread& thread : threads) thread.join();
        EXPECT_EQ(nWrong, 0);
    }
}

}  // namespace
}  // namespace moremate::RandomAccessLZWBuffer
