// The kernel's own mutex object; the state is its handle.

#include "platform/named_mutex.h"

#include <windows.h>

#include "platform/windows/wide_text.h"

using namespace zel;

NamedMutex::NamedMutex(std::string_view name) noexcept {
    const WideText wide(name);
    if (wide.Text() == nullptr || name.empty() != (wide.Length() == 0)) return;
    _state = static_cast<State*>(CreateMutexW(nullptr, FALSE, name.empty() ? nullptr : wide.Text()));
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
