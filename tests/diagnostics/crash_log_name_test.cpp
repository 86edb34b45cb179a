#include "diagnostics/crash_log_name.h"

#include <gtest/gtest.h>

namespace moremate::diagnostics {
namespace {

// The name formed without the C library agrees with strftime over UTC, shifted by the offset.
TEST(CrashLogName, AgreesWithStrftime) {
    const time_t times[] = {0, 951782400 /* 2000-02-29 */, 1709251199, 1735689599, 4102444800, 1234567890};
    const long offsets[] = {0, 3600, -5 * 3600, 5 * 3600 + 1800, -12 * 3600, 14 * 3600};
    for (const time_t t : times)
        for (const long offset : offsets) {
            const time_t shifted = t + offset;
            tm utc{};
            gmtime_r(&shifted, &utc);
            char expected[64];
            strftime(expected, sizeof expected, "crash_log_%Y-%m-%d_%H-%M-%S.log", &utc);
            char name[kCrashLogNameSize];
            CrashLogName(t, offset, name);
            EXPECT_STREQ(name, expected) << t << " " << offset;
        }
}

}  // namespace
}  // namespace moremate::diagnostics
