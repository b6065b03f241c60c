// Threads by the calls of the C runtime and of the system. A new thread gets its function in a block, which it frees.

#include "platform/threads.h"

#include <process.h>
#include <windows.h>

#include "base/failure_report.h"
#include "base/memory.h"

using namespace zel;

namespace {

struct Call {
    void (*body)(void* argument);
    void* argument;
};

unsigned __stdcall MakeCall(void* made) {
    const Call call = *static_cast<Call*>(made);
    ZELDelete(static_cast<Call*>(made));
    call.body(call.argument);
    return 0;
}

}  // namespace

unsigned int zel::CurrentThreadId() noexcept {
    return GetCurrentThreadId();
}

void zel::NameCurrentThread(const char* name) noexcept {
    // Present from Windows 10 on.
    using SetDescription = HRESULT(WINAPI*)(HANDLE, PCWSTR);
    const auto setDescription = reinterpret_cast<SetDescription>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("kernel32.dll"), "SetThreadDescription")));
    wchar_t wideName[64];
    if (setDescription == nullptr) return;
    if (MultiByteToWideChar(CP_ACP, 0, name, -1, wideName, 64) == 0) wideName[63] = L'\0';
    setDescription(GetCurrentThread(), wideName);
}

bool zel::StartThread(void (*body)(void* argument), void* argument) noexcept {
    auto* const call = ZELNew<Call>(body, argument);
    if (call == nullptr) {
        ReportAllocFailure("StartThread", sizeof(Call));
        return false;
    }
    // The C runtime's call, which gives back at the thread's end what the runtime keeps for it.
    const auto thread = reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, MakeCall, call, 0, nullptr));
    if (thread == nullptr) {
        ZELDelete(call);
        return false;
    }
    CloseHandle(thread);
    return true;
}

void zel::KeepLibraryLoaded() noexcept {
    HMODULE library;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                       reinterpret_cast<LPCSTR>(&MakeCall), &library);
}
