// The date layouts of TAEnvironment.h, for any broken-down time.
#ifndef FOUNDATIONS_DATE_TEXT_H
#define FOUNDATIONS_DATE_TEXT_H

#include "ZELString.h"
#include "platform/clock.h"

ZELString FormatDay(const platform::LocalTime& time) noexcept;
ZELString FormatShortDate(const platform::LocalTime& time) noexcept;
ZELString FormatSortDate(const platform::LocalTime& time) noexcept;

#endif
