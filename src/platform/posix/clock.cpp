// Local time from the C runtime, by its functions without static results.

#include "platform/clock.h"

#include <cstring>
#include <ctime>

using namespace zel;

bool zel::ToLocalTime(std::int64_t seconds, LocalTime& time) noexcept {
    const std::time_t instant = seconds;
    std::tm broken;
    if (localtime_r(&instant, &broken) == nullptr) return false;
    time = {broken.tm_year + 1900, broken.tm_mon + 1, broken.tm_mday, broken.tm_hour, broken.tm_min, broken.tm_sec};
    return true;
}

bool zel::ToClockText(std::int64_t seconds, char (&text)[ClockTextLength + 1]) noexcept {
    const std::time_t instant = seconds;
    char line[64];
    const bool told = ctime_r(&instant, line) != nullptr && std::strlen(line) == ClockTextLength + 1;
    if (told) std::memcpy(text, line, ClockTextLength);
    text[told ? ClockTextLength : 0] = '\0';
    return told;
}
