#include "process_threads.h"

#include <filesystem>
#include <string>
#include <system_error>

namespace moremate {

bool ForEachProcessThread(const std::function<bool(pid_t)>& change) {
    bool all = true;
    std::error_code error;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task", error)) {
        const std::string name = task.path().filename().string();
        if (name.find_first_not_of("0123456789") == std::string::npos) all = change(std::stoi(name)) && all;
    }
    return all && !error;
}

}  // namespace moremate
