#include "crash_log_name.h"

#include <cstdint>

namespace moremate::diagnostics {

namespace {

struct TCivilDate {
    int64_t year;
    unsigned month, day;
};

// The proleptic Gregorian date of a count of days since 1970-01-01 (H. Hinnant's algorithm).
TCivilDate CivilFromDays(int64_t days) {
    days += 719468;
    const int64_t era = (days >= 0 ? days : days - 146096) / 146097;
    const auto dayOfEra = static_cast<unsigned>(days - era * 146097);
    const unsigned yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const unsigned dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const unsigned shifted = (5 * dayOfYear + 2) / 153;
    const unsigned day = dayOfYear - (153 * shifted + 2) / 5 + 1;
    const unsigned month = shifted < 10 ? shifted + 3 : shifted - 9;
    return {static_cast<int64_t>(yearOfEra) + era * 400 + (month <= 2), month, day};
}

char* Digits(char* out, int64_t value, int width) {
    for (int i = width - 1; i >= 0; --i, value /= 10) out[i] = static_cast<char>('0' + value % 10);
    return out + width;
}

char* Copy(char* out, const char* text) {
    while (*text != '\0') *out++ = *text++;
    return out;
}

}  // namespace

void CrashLogName(time_t now, long utcOffsetSeconds, char (&name)[kCrashLogNameSize]) {
    const int64_t local = static_cast<int64_t>(now) + utcOffsetSeconds;
    const int64_t days = (local >= 0 ? local : local - 86399) / 86400;
    const int64_t seconds = local - days * 86400;
    const TCivilDate date = CivilFromDays(days);
    char* out = Copy(name, "crash_log_");
    out = Digits(out, date.year, 4);
    *out++ = '-';
    out = Digits(out, date.month, 2);
    *out++ = '-';
    out = Digits(out, date.day, 2);
    *out++ = '_';
    out = Digits(out, seconds / 3600, 2);
    *out++ = '-';
    out = Digits(out, seconds / 60 % 60, 2);
    *out++ = '-';
    out = Digits(out, seconds % 60, 2);
    out = Copy(out, ".log");
    *out = '\0';
}

}  // namespace moremate::diagnostics
