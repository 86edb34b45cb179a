// The crash log's file name, "crash_log_%Y-%m-%d_%H-%M-%S.log" in local time, formed without the
// C library's time zone functions (they lock): the offset from UTC is taken when the handler is
// installed.
#pragma once

#include <cstddef>
#include <ctime>

namespace moremate::diagnostics {

inline constexpr size_t kCrashLogNameSize = 48;

// `utcOffsetSeconds`: local time minus UTC, as tm_gmtoff gives it.
void CrashLogName(time_t now, long utcOffsetSeconds, char (&name)[kCrashLogNameSize]);

}  // namespace moremate::diagnostics
