// The four dates. They belong to TAEnvironment.h and stand here because dated trace headers need them.

#include "foundations/date_text.h"

#include <cstdio>
#include <ctime>

#include "TAEnvironment.h"

using namespace zel;

namespace {

ZELString Now(ZELString (*format)(const LocalTime&) noexcept) {
    LocalTime time;
    return ToLocalTime(std::time(nullptr), time) ? format(time) : ZELString();
}

}  // namespace

ZELString zel::FormatDay(const LocalTime& time) noexcept {
    char text[40];
    std::snprintf(text, sizeof text, "%.2d/%.2d/%.2d", time.day, time.month, time.year);
    return text;
}

ZELString zel::FormatShortDate(const LocalTime& time) noexcept {
    char text[60];
    std::snprintf(text, sizeof text, "%.2d-%.2d.%.2d:%.2d", time.month, time.day, time.hour, time.minute);
    return text;
}

ZELString zel::FormatSortDate(const LocalTime& time) noexcept {
    char text[80];
    std::snprintf(text, sizeof text, "%.2d-%.2d-%.2d-%.2d-%.2d-%.2d", time.year, time.month, time.day, time.hour,
                  time.minute, time.second);
    return text;
}

ZELString GetDate() noexcept {
    char text[ClockTextLength + 1];
    ToClockText(std::time(nullptr), text);
    return text;
}

ZELString GetDay() noexcept {
    return Now(FormatDay);
}

ZELString GetShortDate() noexcept {
    return Now(FormatShortDate);
}

ZELString GetSortDate() noexcept {
    return Now(FormatSortDate);
}
