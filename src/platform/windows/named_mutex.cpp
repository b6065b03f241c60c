// The kernel's own mutex object; the state is its handle.

#include "platform/named_mutex.h"

#include <windows.h>

#include <cstddef>
#include <memory>
#include <new>

using namespace zel;

NamedMutex::NamedMutex(std::string_view name) noexcept {
    const int bytes = static_cast<int>(name.size());
    const int units = name.empty() ? 0 : MultiByteToWideChar(CP_ACP, 0, name.data(), bytes, nullptr, 0);
    if (name.empty() != (units == 0)) return;
    const std::unique_ptr<wchar_t[]> wide(new (std::nothrow) wchar_t[static_cast<std::size_t>(units) + 1]);
    if (!wide) return;
    if (units != 0) MultiByteToWideChar(CP_ACP, 0, name.data(), bytes, wide.get(), units);
    wide[static_cast<std::size_t>(units)] = L'\0';
    _state = static_cast<State*>(CreateMutexW(nullptr, FALSE, units != 0 ? wide.get() : nullptr));
}

NamedMutex::~NamedMutex() {
    if (_state != nullptr) CloseHandle(_state);
}

int NamedMutex::Lock() noexcept {
    static_assert(WAIT_OBJECT_0 == 0 && WAIT_ABANDONED_0 == 128 && WAIT_FAILED == 0xFFFFFFFF);
    return _state != nullptr ? static_cast<int>(WaitForSingleObject(_state, INFINITE)) : -1;
}

bool NamedMutex::Unlock() noexcept {
    return _state != nullptr && ReleaseMutex(_state) != 0;
}
