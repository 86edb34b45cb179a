#include "available_memory.h"

#include <fstream>
#include <sstream>
#include <string>

#include "settings/machine.h"

namespace moremate {

uint64_t AvailableMemoryBytes(const std::filesystem::path& meminfo) {
    std::ifstream in(meminfo);
    std::string line;
    while (std::getline(in, line)) {
        std::istringstream fields(line);
        std::string key, unit;
        uint64_t kilobytes = 0;
        if (fields >> key >> kilobytes >> unit && key == "MemAvailable:" && unit == "kB")
            return kilobytes * 1024;
    }
    return PhysicalMemoryBytes() / 2;
}

}  // namespace moremate
