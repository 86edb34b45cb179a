#include "machine.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <fstream>
#include <set>
#include <string>
#include <thread>
#include <utility>

namespace moremate {
namespace {

std::atomic<unsigned> g_nLogicalProcessors{0};
std::atomic<unsigned> g_nPhysicalCores{0};

bool IsProcessorFolder(const std::filesystem::path& folder) {
    std::string name = folder.filename().string();
    return name.size() > 3 && name.starts_with("cpu") &&
           name.find_first_not_of("0123456789", 3) == std::string::npos;
}

bool ReadNumber(const std::filesystem::path& file, long& value) {
    std::ifstream in(file);
    return static_cast<bool>(in >> value);
}

// The cached value, computed by the first caller; a race only computes it twice.
unsigned Cached(std::atomic<unsigned>& cache, unsigned (*compute)()) {
    unsigned value = cache.load(std::memory_order_relaxed);
    if (value == 0) {
        value = compute();
        cache.store(value, std::memory_order_relaxed);
    }
    return value;
}

}  // namespace

uint64_t PhysicalMemoryBytes() {
    long pages = sysconf(_SC_PHYS_PAGES);
    long pageSize = sysconf(_SC_PAGE_SIZE);
    return pages > 0 && pageSize > 0 ? static_cast<uint64_t>(pages) * static_cast<uint64_t>(pageSize) : 0;
}

unsigned CountPhysicalCores(const std::filesystem::path& cpuFolder) {
    std::set<std::pair<long, long>> cores;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(cpuFolder, error)) {
        long package = 0;
        long core = 0;
        if (IsProcessorFolder(entry.path()) &&
            ReadNumber(entry.path() / "topology/physical_package_id", package) &&
            ReadNumber(entry.path() / "topology/core_id", core)) {
            cores.emplace(package, core);
        }
    }
    return static_cast<unsigned>(cores.size());
}

unsigned LogicalProcessorCount() {
    return Cached(g_nLogicalProcessors, [] { return std::max(1u, std::thread::hardware_concurrency()); });
}

unsigned PhysicalCoreCount() {
    return Cached(g_nPhysicalCores, [] {
        unsigned logical = LogicalProcessorCount();
        unsigned cores = logical >= 2 ? CountPhysicalCores("/sys/devices/system/cpu") : 0;
        return cores != 0 ? cores : logical;
    });
}

}  // namespace moremate
