// Local time from the C runtime, whose static results are one per thread.

#include "platform/clock.h"

#include <time.h>

#include <cstring>

using namespace zel;

bool zel::ToLocalTime(std::int64_t seconds, LocalTime& time) noexcept {
    const __time64_t instant = seconds;
    const tm* const broken = _localtime64(&instant);
    if (broken == nullptr) return false;
    time = {broken->tm_year + 1900, broken->tm_mon + 1, broken->tm_mday,
            broken->tm_hour,        broken->tm_min,     broken->tm_sec};
    return true;
}

bool zel::ToClockText(std::int64_t seconds, char (&text)[ClockTextLength + 1]) noexcept {
    const __time64_t instant = seconds;
    const char* const line = _ctime64(&instant);
    const std::size_t length = line != nullptr ? std::strcspn(line, "\n") : 0;
    const bool told = length > 0 && length <= ClockTextLength;
    if (told) std::memcpy(text, line, length);
    text[told ? length : 0] = '\0';
    return told;
}
