#include "support/shared_library.h"

#include <windows.h>

void* OpenLibraryBeside(const std::string& name) {
    return LoadLibraryA((name + ".dll").c_str());
}

void* FindFunction(void* library, const char* name) {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

void CloseLibrary(void* library) {
    FreeLibrary(static_cast<HMODULE>(library));
}

bool IsLoaded(void* code) {
    constexpr DWORD Flags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    HMODULE found;
    return GetModuleHandleExA(Flags, static_cast<LPCSTR>(code), &found) != 0;
}
