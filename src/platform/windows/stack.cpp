// The system walks the stack; its symbol library, which serves one thread at a time, names what it finds in debug
// information and exports. The library gets a process handle of its own, so that a session of the host program's stays
// apart from ours. Module and offset need no symbols.

#include "platform/stack.h"

#include <windows.h>
//
#include <cxxabi.h>
#include <dbghelp.h>

#include <algorithm>

#include "platform/frame_text.h"

using namespace zel;

namespace {

// The system's own lock: it needs no start-up code and is never destroyed.
constinit SRWLOCK symbolLock = SRWLOCK_INIT;

// The symbol session, begun on first use and kept; null when the system gives none.
HANDLE SymbolSession() {
    static HANDLE session = nullptr;
    if (session == nullptr) {
        HANDLE const self = GetCurrentProcess();
        if (!DuplicateHandle(self, self, self, &session, 0, FALSE, DUPLICATE_SAME_ACCESS)) return nullptr;
        if (!SymInitialize(session, nullptr, TRUE)) {
            CloseHandle(session);
            session = nullptr;
        }
    }
    return session;
}

void DescribeModule(const void* address, FrameName& name) {
    HMODULE module = nullptr;
    constexpr DWORD flags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    char path[MAX_PATH];
    if (!GetModuleHandleExA(flags, static_cast<const char*>(address), &module)) return;
    const DWORD length = GetModuleFileNameA(module, path, sizeof path);
    if (length == 0 || length >= sizeof path) return;
    SetModule(name, path, reinterpret_cast<std::uintptr_t>(address) - reinterpret_cast<std::uintptr_t>(module));
}

void DescribeFunction(const void* address, FrameName& name) {
    constexpr std::size_t NameRoom = 1024;
    alignas(SYMBOL_INFO) char room[sizeof(SYMBOL_INFO) + NameRoom] = {};
    SYMBOL_INFO* const symbol = reinterpret_cast<SYMBOL_INFO*>(room);
    symbol->SizeOfStruct = sizeof(SYMBOL_INFO);
    symbol->MaxNameLen = NameRoom;
    DWORD64 offset = 0;
    AcquireSRWLockExclusive(&symbolLock);
    HANDLE const session = SymbolSession();
    const bool known = session != nullptr && SymFromAddr(session, reinterpret_cast<DWORD64>(address), &offset, symbol);
    ReleaseSRWLockExclusive(&symbolLock);
    if (known) SetFunction(name, symbol->Name, offset);
}

}  // namespace

int zel::CaptureStack(void** frames, int limit, int skip) noexcept {
    // The system leaves itself out; this function is the first.
    const int found = CaptureStackBackTrace(static_cast<DWORD>(skip) + 1, static_cast<DWORD>(limit), frames, nullptr);
    // Below a thread's first function the walk may run into memory that holds no frames.
    return static_cast<int>(std::find(frames, frames + found, nullptr) - frames);
}

char* zel::Demangle(const char* symbol) noexcept {
    int status = -1;
    return abi::__cxa_demangle(symbol, nullptr, nullptr, &status);
}

void zel::DescribeFrame(const void* address, FrameName& name) noexcept {
    name = {};
    DescribeModule(address, name);
    DescribeFunction(address, name);
}
