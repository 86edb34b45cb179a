// The chunk allocator: units are distinct and reused, empty chunks wait for reuse up to a limit,
// resizing keeps the contents, and the statistics report counts it all.
#include <gtest/gtest.h>
#include <sys/mman.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <random>
#include <set>
#include <thread>
#include <vector>

#include "registers/chunk_allocator.h"

namespace moremate {
namespace {

constexpr std::array<size_t, CChunkAllocator::kUnitSizeCount> kSizes = {
    16, 32, 48, 64, 256, 1024, 4096, 8192, 16384, 32768, 65536, 131072, 262144};
constexpr size_t kUnitsOf4096 = CChunkAllocator::kChunkSize / 4096 - 1;  // 511 after the chunk's header

TEST(RegisterChunkAllocator, UnitsAreDistinctAndReused) {
    CChunkAllocator allocator(kSizes);
    std::vector<void*> blocks;
    for (size_t i = 0; i < kUnitsOf4096 + 1; ++i) {
        blocks.push_back(allocator.Allocate(3000 + i));
        std::memset(blocks.back(), static_cast<int>(i), 3000);
    }
    EXPECT_EQ(std::set<void*>(blocks.begin(), blocks.end()).size(), blocks.size());
    TChunkStatistics s = allocator.Statistics();
    EXPECT_EQ(s.nChunks, 2u);
    EXPECT_EQ(s.nUnits, 2 * kUnitsOf4096);
    EXPECT_EQ(s.nFreeUnits, kUnitsOf4096 - 1);

    allocator.Free(blocks[7]);
    EXPECT_EQ(allocator.Allocate(4096), blocks[7]);
    for (size_t i = 0; i < kUnitsOf4096; ++i) allocator.Free(blocks[i]);
    s = allocator.Statistics();
    EXPECT_EQ(s.nUnusedChunks, 1u);
    EXPECT_EQ(s.nFreeUnits, 2 * kUnitsOf4096 - 1);
    // The chunk still in use serves first; an empty one waits.
    allocator.Free(allocator.Allocate(4000));
    allocator.Free(blocks.back());
    s = allocator.Statistics();
    EXPECT_EQ(s.nChunks, 2u);
    EXPECT_EQ(s.nUnusedChunks, 2u);
    EXPECT_EQ(s.nFreeUnits, s.nUnits);
    // The first unit of a chunk, right after its header.
    EXPECT_LT(reinterpret_cast<uintptr_t>(allocator.Allocate(4000)) & (CChunkAllocator::kChunkSize - 1),
              4096u);
    EXPECT_EQ(allocator.Statistics().nUnusedChunks, 1u);  // a waiting chunk was taken
    EXPECT_EQ(allocator.Statistics().nChunks, 2u);
}

// Freed units come back lowest first, over many words of a chunk's free marks and whatever the
// order they were freed in, and never while still in use.
TEST(RegisterChunkAllocator, FreedUnitsComeBackLowestFirst) {
    CChunkAllocator allocator(kSizes);
    std::vector<void*> units;
    for (int i = 0; i < 1'000; ++i) units.push_back(allocator.Allocate(16));
    std::vector<void*> freed;
    for (size_t i = units.size(); i-- > 0;) {
        if (i % 3 == 0 || i % 64 == 63) freed.push_back(units[i]);
    }
    std::shuffle(freed.begin(), freed.end(), std::mt19937(3));
    for (void* p : freed) allocator.Free(p);
    std::sort(freed.begin(), freed.end());
    std::vector<void*> again;
    for (size_t i = 0; i < freed.size(); ++i) again.push_back(allocator.Allocate(16));
    EXPECT_EQ(again, freed);
    const std::set<void*> distinct(units.begin(), units.end());
    EXPECT_EQ(distinct.size(), units.size());
    EXPECT_EQ(distinct.count(allocator.Allocate(16)), 0u);  // the next one is fresh
}

// Chunks emptied (a register destroyed at the end of a problem) all wait for the next
// allocations, which take them instead of asking the system, until they are released.
TEST(RegisterChunkAllocator, EmptyChunksWaitForReuseUntilReleased) {
    CChunkAllocator allocator(kSizes);
    const size_t nChunks = 11;
    std::vector<void*> blocks;
    for (size_t i = 0; i < nChunks * kUnitsOf4096; ++i) blocks.push_back(allocator.Allocate(4096));
    EXPECT_EQ(allocator.Statistics().nChunks, nChunks);
    EXPECT_EQ(allocator.Statistics().nFreeUnits, 0u);
    for (void* p : blocks) allocator.Free(p);
    TChunkStatistics s = allocator.Statistics();
    EXPECT_EQ(s.nChunks, nChunks);
    EXPECT_EQ(s.nUnusedChunks, nChunks);
    EXPECT_EQ(s.nFreeUnits, s.nUnits);
    for (void*& p : blocks) p = allocator.Allocate(4096);
    s = allocator.Statistics();
    EXPECT_EQ(s.nChunks, nChunks);
    EXPECT_EQ(s.nUnusedChunks, 0u);
    EXPECT_EQ(s.nFreeUnits, 0u);
    for (void* p : blocks) allocator.Free(p);
    allocator.ReleaseUnusedChunks();
    s = allocator.Statistics();
    EXPECT_EQ(s.nChunks, 0u);
    EXPECT_EQ(s.nUnits, 0u);
    EXPECT_EQ(s.nFreeUnits, 0u);
}

TEST(RegisterChunkAllocator, ReallocationKeepsTheContents) {
    CChunkAllocator allocator(kSizes);
    auto* p = static_cast<uint8_t*>(allocator.Allocate(100));
    for (int i = 0; i < 100; ++i) p[i] = static_cast<uint8_t>(i);
    EXPECT_EQ(allocator.Reallocate(p, 200), p);  // the unit of 256 holds it
    for (size_t nSize : {size_t{5'000}, size_t{1} << 21, size_t{3} << 20, size_t{60}}) {
        p = static_cast<uint8_t*>(allocator.Reallocate(p, nSize));
        for (int i = 0; i < 60; ++i) ASSERT_EQ(p[i], i) << nSize;
        if (nSize > 100) std::memset(p + 100, 0xAB, nSize - 100);
    }
    allocator.Free(p);
    allocator.Free(nullptr);
    EXPECT_EQ(allocator.Statistics().nFreeUnits, allocator.Statistics().nUnits);
}

size_t UnitsInUse(const CChunkAllocator& allocator) {
    const TChunkStatistics s = allocator.Statistics();
    return s.nUnits - s.nFreeUnits;
}

// Two threads allocate and free at once, and a third frees what another allocated. With the
// registers' allocator, which serves small units from caches of each thread, the units an ended
// thread held are back in their chunks.
TEST(RegisterChunkAllocator, ThreadsShareTheAllocator) {
    CChunkAllocator own(kSizes);
    for (CChunkAllocator* pAllocator : {&own, &RegisterChunkAllocator()}) {
        CChunkAllocator& allocator = *pAllocator;
        const size_t nInUse = UnitsInUse(allocator);
        std::vector<void*> handedOver;
        auto work = [&allocator, &handedOver](int nSeed) {
            std::vector<void*> blocks;
            for (int round = 0; round < 2'000; ++round) {
                blocks.push_back(allocator.Allocate(static_cast<size_t>(16 + (round * nSeed) % 5'000)));
                if (round % 3 == 0) {
                    allocator.Free(blocks.front());
                    blocks.erase(blocks.begin());
                }
            }
            if (nSeed == 7) {
                handedOver = blocks;
            } else {
                for (void* p : blocks) allocator.Free(p);
            }
        };
        std::thread first(work, 7), second(work, 13);
        first.join();
        second.join();
        std::thread([&] {
            for (void* p : handedOver) allocator.Free(p);
        }).join();
        EXPECT_EQ(UnitsInUse(allocator), nInUse);
    }
}

// Holders of the chunk reserve come and go on two threads, nested and overlapping, while both take
// new chunks: every allocation is served and every scope ends, the helper waiting between them.
TEST(RegisterChunkAllocator, ReserveScopesComeAndGo) {
    CChunkAllocator& allocator = RegisterChunkAllocator();
    auto churn = [&allocator](int nRound) {
        const CChunkReserveScope scope;
        std::vector<void*> blocks;
        for (int i = 0; i < 20'000 + 1'000 * nRound; ++i) blocks.push_back(allocator.Allocate(600));
        for (void* p : blocks) allocator.Free(p);
        allocator.ReleaseUnusedChunks();
    };
    for (int round = 0; round < 8; ++round) {
        std::thread other(churn, round);
        {
            const CChunkReserveScope outer;
            churn(round);
        }
        other.join();
    }
}

size_t ResidentPages(uint8_t* p, size_t nBytes) {
    std::vector<unsigned char> resident(nBytes / 4096);
    if (mincore(p, nBytes, resident.data()) != 0) return 0;
    return static_cast<size_t>(
        std::count_if(resident.begin(), resident.end(), [](unsigned char c) { return c & 1; }));
}

// Fresh memory handed to the reserve's helper gets its pages faulted in, with the bytes already
// written kept; without a holder the request is dropped. With both processors busy with other
// tests the helper may take seconds.
TEST(RegisterChunkAllocator, HelperFaultsInFreshPagesKeepingTheirBytes) {
    constexpr size_t kBytes = size_t{8} << 20;
    auto* p = static_cast<uint8_t*>(
        mmap(nullptr, kBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    ASSERT_NE(p, MAP_FAILED);
    madvise(p, kBytes, MADV_NOHUGEPAGE);  // pages of 4 KiB, counted one by one
    PrefaultInBackground(p, kBytes);      // no holder: nothing happens
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(ResidentPages(p, kBytes), 0u);
    for (size_t i = 0; i < kBytes; i += 64 * 4096) p[i + 7] = static_cast<uint8_t>(i >> 18);
    {
        const CChunkReserveScope scope;
        PrefaultInBackground(p, kBytes);
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(90);
        while (ResidentPages(p, kBytes) < kBytes / 4096 && std::chrono::steady_clock::now() < deadline)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    EXPECT_EQ(ResidentPages(p, kBytes), kBytes / 4096);
    for (size_t i = 0; i < kBytes; ++i) {
        const uint8_t expected = i % (64 * 4096) == 7 ? static_cast<uint8_t>((i - 7) >> 18) : 0;
        ASSERT_EQ(p[i], expected) << i;
    }
    munmap(p, kBytes);
}

TEST(RegisterChunkAllocator, Report) {
    EXPECT_EQ(ChunkAllocatorReport({3, 1'000, 250, 1}),
              "1. Number of allocated chunks = 3 (6 MB)\n"
              "2. Total allocation units      = 1000\n"
              "3. Total free allocation units = 250 (usage=75%)\n"
              "4. Number of unused chunks waiting to deallocate = 1\n");
}

}  // namespace
}  // namespace moremate
