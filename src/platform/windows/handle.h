// Handles that close themselves.
#ifndef PLATFORM_WINDOWS_HANDLE_H
#define PLATFORM_WINDOWS_HANDLE_H

#include <windows.h>

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

}  // namespace zel

#endif
