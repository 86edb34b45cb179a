#include "relaxation_log.h"

#include <unistd.h>

#include <ctime>
#include <fstream>
#include <mutex>

#include <fmt/format.h>

namespace moremate {
namespace {

std::mutex g_relaxationLogMutex;
std::mutex g_engineLogMutex;

// "YYYY-MM-DD hh:mm:ss" of the local time now.
std::string LocalTimeText() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local);
    return text;
}

void Append(std::mutex& mutex, const std::string& path, const std::string& line) {
    std::lock_guard lock(mutex);
    std::ofstream(path, std::ios::app) << line;
}

}  // namespace

void AppendRelaxationLog(const std::string& folder, bool before, int16_t thread, const std::string& setText) {
    const std::string time = LocalTimeText();
    Append(g_relaxationLogMutex, folder + "/TryRelaxSpecialHeuristics.log",
           fmt::format("{} {} th={} {}\n", time, before ? "BEFORE" : "AFTER ", thread, setText));
}

void AppendTimeDependentLine(const std::string& path, int64_t calcTime, int64_t limit) {
    const std::string time = LocalTimeText();
    Append(g_engineLogMutex, path,
           fmt::format(
               "{}, {}: Time dependent relaxation near the limit: calcTime={} msec.; limit={} msec. {}\n",
               time, static_cast<long>(getpid()), calcTime, limit,
               calcTime < limit ? "(additional relaxation accepted)" : "(additional relaxation refused)"));
}

}  // namespace moremate
