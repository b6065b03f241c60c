// A handle holds a process while its identity is compared, so its number cannot be given to another in between.

#include "platform/process_kill.h"

#include <utility>

#include <windows.h>

#include "platform/windows/handle.h"

using namespace zel;

namespace {

bool IsIt(HANDLE process, const ProcessIdentity& identity) {
    if (GetProcessId(process) != static_cast<DWORD>(identity.pid)) return false;
    if (identity.born == 0) return true;
    FILETIME born, ended, kernel, user;
    if (!GetProcessTimes(process, &born, &ended, &kernel, &user)) return false;
    return Ticks(born) == identity.born;
}

bool HasEnded(HANDLE process) {
    return WaitForSingleObject(process, 0) == WAIT_OBJECT_0;
}

Handle Open(const ProcessIdentity& identity, DWORD access) {
    if (identity.pid <= 0) return Handle();
    constexpr DWORD Look = PROCESS_QUERY_LIMITED_INFORMATION | SYNCHRONIZE;
    Handle process(OpenProcess(Look | access, FALSE, static_cast<DWORD>(identity.pid)));
    return process.IsOpen() && IsIt(process.Get(), identity) ? std::move(process) : Handle();
}

Handle OpenOwnToken() {
    HANDLE token = nullptr;
    const bool isOpen = OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY, &token) != 0;
    return Handle(isOpen ? token : nullptr);
}

const unsigned short* DebugPrivilegeName() {
    static_assert(sizeof(wchar_t) == sizeof(unsigned short));
    return reinterpret_cast<const unsigned short*>(L"SeDebugPrivilege");
}

}  // namespace

bool zel::KillProcess(const ProcessIdentity& identity, unsigned int exitCode) noexcept {
    const Handle process = Open(identity, PROCESS_TERMINATE);
    return process.IsOpen() && !HasEnded(process.Get()) && TerminateProcess(process.Get(), exitCode) != 0;
}

bool zel::HoldProcess(const ProcessIdentity&) noexcept {
    return false;
}

bool zel::AwaitProcessEnd(const ProcessIdentity& identity, int milliseconds) noexcept {
    const Handle process = Open(identity, 0);
    ProcessEntry entry;
    if (!process.IsOpen()) return FindProcess(identity, entry) == Sight::Gone;
    return WaitForSingleObject(process.Get(), static_cast<DWORD>(milliseconds)) == WAIT_OBJECT_0;
}

void zel::VisitWindows(int (*visit)(HWND window, unsigned long pid), unsigned long pid) noexcept {
    struct Visit {
        int (*function)(HWND, unsigned long);
        unsigned long pid;
    };
    Visit all = {visit, pid};
    const auto visitOne = [](HWND window, LPARAM context) -> BOOL {
        const Visit& to = *reinterpret_cast<const Visit*>(context);
        return to.function(window, to.pid);
    };
    EnumWindows(visitOne, reinterpret_cast<LPARAM>(&all));
}

Answer zel::AskToEnd(HWND window, const ProcessIdentity& identity) noexcept {
    constexpr UINT TimeToHear = 2000;
    constexpr DWORD TimeToEnd = 5000;
    DWORD owner = 0;
    GetWindowThreadProcessId(window, &owner);
    if (owner == 0 || owner != static_cast<DWORD>(identity.pid)) return Answer::NotIts;
    const Handle process = Open(identity, 0);
    if (identity.born != 0 && !process.IsOpen()) return Answer::NotIts;  // somebody else's by now
    DWORD_PTR result = 0;
    if (!SendMessageTimeoutW(window, WM_CLOSE, 0, 0, SMTO_NORMAL, TimeToHear, &result)) return Answer::Unreached;
    if (!process.IsOpen()) return Answer::Unknown;
    return WaitForSingleObject(process.Get(), TimeToEnd) == WAIT_OBJECT_0 ? Answer::Ended : Answer::Stays;
}

DebugPrivilege::DebugPrivilege() noexcept {
    Handle token = OpenOwnToken();
    if (token.IsOpen() && SetTokenPrivilege(token.Get(), DebugPrivilegeName(), true)) _token = token.Release();
}

DebugPrivilege::~DebugPrivilege() {
    const Handle token(_token);
    if (token.IsOpen()) SetTokenPrivilege(token.Get(), DebugPrivilegeName(), false);
}

void DebugPrivilege::Keep() noexcept {
    const Handle token(_token);
    _token = nullptr;
}

// In two steps: the first switches the privilege off and gives its state before, the second builds on that.
bool zel::SetTokenPrivilege(void* token, const unsigned short* name, bool enable) noexcept {
    TOKEN_PRIVILEGES wanted = {};
    TOKEN_PRIVILEGES before = {};
    DWORD size = sizeof before;
    wanted.PrivilegeCount = 1;
    if (!LookupPrivilegeValueW(nullptr, reinterpret_cast<const wchar_t*>(name), &wanted.Privileges[0].Luid))
        return false;
    const LUID luid = wanted.Privileges[0].Luid;
    AdjustTokenPrivileges(token, FALSE, &wanted, sizeof wanted, &before, &size);
    if (GetLastError() != ERROR_SUCCESS) return false;
    before.PrivilegeCount = 1;
    before.Privileges[0].Luid = luid;
    if (enable)
        before.Privileges[0].Attributes |= SE_PRIVILEGE_ENABLED;
    else
        before.Privileges[0].Attributes &= ~static_cast<DWORD>(SE_PRIVILEGE_ENABLED);
    AdjustTokenPrivileges(token, FALSE, &before, size, nullptr, nullptr);
    return GetLastError() == ERROR_SUCCESS;
}
