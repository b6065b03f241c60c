// Facts about a Windows machine and process.

#include "platform/system.h"

#include <winsock2.h>
//
#include <windows.h>

#include <cstdlib>
#include <cstring>

#include "platform/native_path.h"

using namespace zel;

bool zel::GetHost(char* name, std::size_t size) noexcept {
    // The socket library counts its users, so this start and end disturb nobody.
    WSADATA data;
    if (WSAStartup(MAKEWORD(2, 2), &data) != 0) return false;
    const bool told = gethostname(name, static_cast<int>(size)) == 0 && std::memchr(name, '\0', size) != nullptr;
    WSACleanup();
    return told;
}

bool zel::GetWorkingDirectory(char* path, std::size_t size) noexcept {
    const DWORD length = GetCurrentDirectoryA(static_cast<DWORD>(size), path);
    return length != 0 && length < size;
}

bool zel::SetWorkingDirectory(const char* path) noexcept {
    const NativePath native(path);
    return native.Text() != nullptr && SetCurrentDirectoryA(native.Text());
}

bool zel::GetSystemVersion(OSVERSIONINFOEXW& version) noexcept {
    version = {};
    version.dwOSVersionInfoSize = sizeof version;
    return GetVersionExW(reinterpret_cast<OSVERSIONINFOW*>(&version)) != 0;
}

int zel::GetProcessorCount() noexcept {
    SYSTEM_INFO system;
    GetSystemInfo(&system);
    return static_cast<int>(system.dwNumberOfProcessors);
}

bool zel::IsAdministrator() noexcept {
    SID_IDENTIFIER_AUTHORITY authority = SECURITY_NT_AUTHORITY;
    PSID group = nullptr;
    if (!AllocateAndInitializeSid(&authority, 2, SECURITY_BUILTIN_DOMAIN_RID, DOMAIN_ALIAS_RID_ADMINS, 0, 0, 0, 0, 0, 0,
                                  &group))
        return false;
    BOOL member = FALSE;
    const bool told = CheckTokenMembership(nullptr, group, &member) != 0;
    FreeSid(group);
    return told && member;
}

int zel::GetOwnProcessId() noexcept {
    return static_cast<int>(GetCurrentProcessId());
}

const char* zel::GetEnvironment(const char* name) noexcept {
    return std::getenv(name);
}

bool zel::PutEnvironment(const char* assignment) noexcept {
    const char* const equals = std::strchr(assignment, '=');
    if (equals == nullptr || equals == assignment) return false;
    return _putenv(assignment) == 0;
}
