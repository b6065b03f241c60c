// Two values of the system that most files of this folder use: handles and times.
#ifndef PLATFORM_WINDOWS_HANDLE_H
#define PLATFORM_WINDOWS_HANDLE_H

#include <windows.h>

#include <cstdint>
#include <utility>

namespace zel {

// Owns a handle; both of the system's values for none count as none.
class Handle {
public:
    explicit Handle(HANDLE handle = nullptr) noexcept : _handle(handle != INVALID_HANDLE_VALUE ? handle : nullptr) {}
    Handle(Handle&& other) noexcept : _handle(std::exchange(other._handle, nullptr)) {}
    Handle& operator=(Handle&& other) noexcept {
        std::swap(_handle, other._handle);
        return *this;
    }
    ~Handle() {
        if (_handle != nullptr) CloseHandle(_handle);
    }

    HANDLE Get() const noexcept { return _handle; }
    bool IsOpen() const noexcept { return _handle != nullptr; }
    HANDLE Release() noexcept { return std::exchange(_handle, nullptr); }

private:
    HANDLE _handle;
};

// A time as a number: units of 100 nanoseconds since 1601.
inline std::int64_t Ticks(const FILETIME& time) noexcept {
    return static_cast<std::int64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime;
}

}  // namespace zel

#endif
