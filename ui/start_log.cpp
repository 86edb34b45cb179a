#include "start_log.h"

#include <ctime>
#include <fstream>

namespace moremate::ui {

std::string StartLogLine(bool opened, std::time_t when) {
    std::tm local{};
    localtime_r(&when, &local);
    char time[32];
    std::strftime(time, sizeof time, "%Y-%m-%d %H:%M:%S", &local);
    return std::string(opened ? "Program opened (" : "Program close (") + time + ")";
}

void AppendStartLog(bool opened, const std::filesystem::path& file) {
    std::ofstream log(file, std::ios::app);
    log << StartLogLine(opened, std::time(nullptr)) << '\n';
}

}  // namespace moremate::ui
