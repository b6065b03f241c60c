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
    const std::size_t length = ctime_r(&instant, line) != nullptr ? std::strcspn(line, "\n") : 0;
    const bool told = length > 0 && length <= ClockTextLength;
    if (told) std::memcpy(text, line, length);
    text[told ? length : 0] = '\0';
    return told;
}
