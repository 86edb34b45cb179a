#include "precalc/generator/available_memory.h"

#include <gtest/gtest.h>

#include <fstream>

#include "settings/machine.h"
#include "tests/support/temp_folder.h"

namespace moremate {
namespace {

TEST(AvailableMemory, ReadsMemAvailableElseHalfThePhysicalMemory) {
    struct {
        const char* content;  // null: no file
        uint64_t bytes;       // 0: half the physical memory
    } const cases[] = {
        {"MemTotal:       24576000 kB\nMemFree:         1000 kB\nMemAvailable:   20000000 kB\n",
         20000000ull * 1024},
        {"MemAvailable: 12 kB\n", 12 * 1024},
        {"MemTotal:       24576000 kB\nMemFree:         1000 kB\n", 0},
        {"MemAvailable: lots\n", 0},
        {nullptr, 0},
    };
    for (const auto& c : cases) {
        testing::CTempFolder folder;
        const std::filesystem::path file = folder.File("meminfo");
        if (c.content) std::ofstream(file) << c.content;
        EXPECT_EQ(AvailableMemoryBytes(file), c.bytes != 0 ? c.bytes : PhysicalMemoryBytes() / 2)
            << (c.content ? c.content : "no file");
    }
}

}  // namespace
}  // namespace moremate
