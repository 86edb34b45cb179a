// The start log: a line when the desktop program opens and one when it closes, with the time,
// appended to "StartLog.log" in the working folder.
#pragma once

#include <ctime>
#include <filesystem>
#include <string>

namespace moremate::ui {

inline constexpr const char* kStartLogFile = "StartLog.log";

// "Program opened (%Y-%m-%d %H:%M:%S)" and "Program close (...)".
std::string StartLogLine(bool opened, std::time_t when);
// Appends the line for now; a log that cannot be written is skipped without a word.
void AppendStartLog(bool opened, const std::filesystem::path& file = kStartLogFile);

}  // namespace moremate::ui
