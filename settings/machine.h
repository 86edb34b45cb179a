// What the machine offers: physical memory for the memory quotas, and logical processors and
// physical cores for the default thread counts. The processor counts are asked once per process
// and cached, as the search asks for them often and they do not change while it runs.
#pragma once

#include <cstdint>
#include <filesystem>

namespace moremate {

uint64_t PhysicalMemoryBytes();

unsigned LogicalProcessorCount();
// Falls back to the logical count on a single processor or when the topology cannot be read.
unsigned PhysicalCoreCount();

// Distinct (package, core) pairs under a folder laid out like /sys/devices/system/cpu, or 0
// when no processor there describes its topology.
unsigned CountPhysicalCores(const std::filesystem::path& cpuFolder);

}  // namespace moremate
