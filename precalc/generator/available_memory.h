// The memory a generation may take: what the system reports as available ("MemAvailable" of
// /proc/meminfo: free memory and caches it can drop), else half of the physical memory.
#pragma once

#include <cstdint>
#include <filesystem>

namespace moremate {

uint64_t AvailableMemoryBytes(const std::filesystem::path& meminfo = "/proc/meminfo");

}  // namespace moremate
