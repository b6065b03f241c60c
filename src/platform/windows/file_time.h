// The system's times as numbers.
#ifndef PLATFORM_WINDOWS_FILE_TIME_H
#define PLATFORM_WINDOWS_FILE_TIME_H

#include <windows.h>

#include <cstdint>

namespace zel {

// Units of 100 nanoseconds since 1601.
inline std::int64_t Ticks(const FILETIME& time) noexcept {
    return static_cast<std::int64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime;
}

}  // namespace zel

#endif
