// Local time. The clock itself is std::time's.
#ifndef PLATFORM_CLOCK_H
#define PLATFORM_CLOCK_H

#include <cstdint>

namespace zel {

struct LocalTime {
    int year;    // the full one
    int month;   // 1 to 12
    int day;     // 1 to 31
    int hour;    // 0 to 23
    int minute;  // 0 to 59
    int second;  // 0 to 60
};

constexpr int ClockTextLength = 24;

// Converts seconds since 1970-01-01 00:00 UTC to the process's time zone; false when the system cannot.
bool ToLocalTime(std::int64_t seconds, LocalTime& time) noexcept;

// Writes the C runtime's ctime text of the same without its end-of-line, with a terminator: 24 characters, fewer before
// the year 1000. The day of the month is padded with a blank on Linux and with a zero on Windows. False, and an empty
// text, when the system cannot convert the time (Windows: before 1970) or the text is longer, as beyond the year 9999.
bool ToClockText(std::int64_t seconds, char (&text)[ClockTextLength + 1]) noexcept;

}  // namespace zel

#endif
