// The date layouts of TAEnvironment.h, for any broken-down time.
#ifndef FOUNDATIONS_DATE_TEXT_H
#define FOUNDATIONS_DATE_TEXT_H

#include "ZELString.h"
#include "platform/clock.h"

namespace zel {

ZELString FormatDay(const LocalTime& time) noexcept;
ZELString FormatShortDate(const LocalTime& time) noexcept;
ZELString FormatSortDate(const LocalTime& time) noexcept;

}  // namespace zel

#endif
