#include "platform/threads.h"

#include <windows.h>

namespace platform {

unsigned int CurrentThreadId() noexcept {
    return GetCurrentThreadId();
}

void NameCurrentThread(const char* name) noexcept {
    // Present from Windows 10 on.
    using SetDescription = HRESULT(WINAPI*)(HANDLE, PCWSTR);
    const auto setDescription = reinterpret_cast<SetDescription>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("kernel32.dll"), "SetThreadDescription")));
    wchar_t wideName[64];
    if (setDescription == nullptr) return;
    if (MultiByteToWideChar(CP_ACP, 0, name, -1, wideName, 64) == 0) wideName[63] = L'\0';
    setDescription(GetCurrentThread(), wideName);
}

}  // namespace platform
