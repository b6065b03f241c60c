// The time of the counters.
#ifndef MEASURE_WHOLE_SECONDS_H
#define MEASURE_WHOLE_SECONDS_H

#include <cstdint>

namespace zel {

// Seconds since 1970-01-01 00:00 UTC.
std::int64_t SecondsNow() noexcept;

// For tests: from now on SecondsNow() returns `seconds` in place of the clock. A negative value restores the clock.
void HoldTime(std::int64_t seconds) noexcept;

}  // namespace zel

#endif
