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

std::tm LocalNow() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    return local;
}

void Append(std::mutex& mutex, const std::string& path, const std::string& line) {
    std::lock_guard lock(mutex);
    std::ofstream(path, std::ios::app) << line;
}

}  // namespace

void AppendRelaxationLog(const std::string& folder, bool before, int16_t thread, const std::string& setText) {
    const std::tm t = LocalNow();
    const std::string time = fmt::format("{}-{:02}-{:02} {:02}:{:02}:{:02}", t.tm_year + 1900, t.tm_mon + 1,
                                         t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec);
    Append(g_relaxationLogMutex, folder + "/TryRelaxSpecialHeuristics.log",
           fmt::format("{} {} th={} {}\n", time, before ? "BEFORE" : "AFTER ", thread, setText));
}

void AppendTimeDependentLine(const std::string& path, int64_t calcTime, int64_t limit) {
    const std::tm t = LocalNow();
    char time[32];
    std::strftime(time, sizeof time, "%Y-%m-%d %H:%M:%S", &t);
    Append(g_engineLogMutex, path,
           fmt::format(
               "{}, {}: Time dependent relaxation near the limit: calcTime={} msec.; limit={} msec. {}\n",
               time, static_cast<long>(getpid()), calcTime, limit,
               calcTime < limit ? "(additional relaxation accepted)" : "(additional relaxation refused)"));
}

}  // namespace moremate
