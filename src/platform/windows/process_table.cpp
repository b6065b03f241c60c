// What the system tells of its processes, one by one. A process names its parent for life, and a process that has ended
// stays in sight as long as somebody holds a handle to it.

#include "platform/process_table.h"

#include <windows.h>
//
#include <psapi.h>
#include <winternl.h>

#include <algorithm>
#include <ctime>
#include <memory>
#include <utility>

#include "base/failure_report.h"
#include "base/growing_array.h"
#include "base/memory.h"
#include "platform/windows/handle.h"

using namespace zel;

namespace {

using QueryInformation = NTSTATUS(NTAPI*)(HANDLE, PROCESSINFOCLASS, PVOID, ULONG, PULONG);

QueryInformation FindQuery() {
    return reinterpret_cast<QueryInformation>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll"), "NtQueryInformationProcess")));
}

// The system ignores the lowest bits of a number when it opens a process.
Handle OpenForLook(int pid) {
    if (pid <= 0) return Handle();
    Handle process(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION | SYNCHRONIZE, FALSE, static_cast<DWORD>(pid)));
    const bool isIt = process.IsOpen() && GetProcessId(process.Get()) == static_cast<DWORD>(pid);
    return isIt ? std::move(process) : Handle();
}

bool ReadParent(HANDLE process, int& parent) {
    static const QueryInformation query = FindQuery();
    PROCESS_BASIC_INFORMATION about = {};
    if (query == nullptr || query(process, ProcessBasicInformation, &about, sizeof about, nullptr) < 0) return false;
    parent = static_cast<int>(about.InheritedFromUniqueProcessId);
    return true;
}

// Fills `numbers` with those of all processes. Leaves as much room again, so that the next look needs no memory.
bool ListNumbers(GrowingArray<DWORD>& numbers) {
    constexpr std::size_t First = 1024;
    for (std::size_t room = std::max(First, numbers.Capacity());; room *= 2) {
        if (!numbers.Reserve(room)) {
            ReportAllocFailure("ProcessTable", room * sizeof(DWORD));
            return false;
        }
        DWORD used = 0;
        if (!EnumProcesses(numbers.Data(), static_cast<DWORD>(room * sizeof(DWORD)), &used)) return false;
        numbers.SetSize(used / sizeof(DWORD));
        if (2 * numbers.Size() <= numbers.Capacity()) return true;
    }
}

bool VisitAll(GrowingArray<DWORD>& numbers, ProcessVisit visit, void* context) {
    if (!ListNumbers(numbers)) return false;
    bool isComplete = true;
    for (const DWORD number : numbers) {
        ProcessEntry entry;
        const Sight sight = LookAtProcess(static_cast<int>(number), entry);
        if (sight == Sight::Untold) isComplete = false;
        if (sight == Sight::There && !entry.hasEnded) visit(entry, context);
    }
    return isComplete;
}

}  // namespace

Sight zel::LookAtProcess(int pid, ProcessEntry& entry) noexcept {
    SetLastError(ERROR_SUCCESS);
    const Handle process = OpenForLook(pid);
    const DWORD error = GetLastError();
    if (!process.IsOpen() && (error == ERROR_NOT_ENOUGH_MEMORY || error == ERROR_NO_SYSTEM_RESOURCES))
        return Sight::Untold;
    FILETIME born, ended, kernel, user;
    int parent = 0;
    if (!process.IsOpen() || !GetProcessTimes(process.Get(), &born, &ended, &kernel, &user)) return Sight::Gone;
    if (!ReadParent(process.Get(), parent)) return Sight::Gone;
    entry = {{pid, Ticks(born)}, parent, WaitForSingleObject(process.Get(), 0) == WAIT_OBJECT_0};
    return Sight::There;
}

bool zel::VisitProcesses(ProcessVisit visit, void* context) noexcept {
    GrowingArray<DWORD> numbers;
    return VisitAll(numbers, visit, context);
}

struct ProcessWatch::State {
    GrowingArray<DWORD> numbers;
};

ProcessWatch::ProcessWatch() noexcept {
    std::unique_ptr<State, DeleteObject> state(ZELNew<State>());
    if (!state)
        ReportAllocFailure("ProcessWatch", sizeof *state);
    else if (ListNumbers(state->numbers))
        _state = state.release();
}

ProcessWatch::~ProcessWatch() {
    ZELDelete(_state);
}

bool ProcessWatch::Visit(ProcessVisit visit, void* context) noexcept {
    return _state != nullptr && VisitAll(_state->numbers, visit, context);
}

bool zel::GetStartTime(int pid, std::int64_t& seconds) noexcept {
    const Handle process = OpenForLook(pid);
    FILETIME born, ended, kernel, user, local;
    SYSTEMTIME fields;
    TIME_ZONE_INFORMATION zone;
    if (!process.IsOpen() || !GetProcessTimes(process.Get(), &born, &ended, &kernel, &user)) return false;
    if (!FileTimeToLocalFileTime(&born, &local) || !FileTimeToSystemTime(&local, &fields)) return false;
    if (GetTimeZoneInformation(&zone) == TIME_ZONE_ID_INVALID) return false;
    const int hours = static_cast<int>(zone.Bias + zone.DaylightBias) / 60;
    std::tm calendar = {};
    calendar.tm_sec = fields.wSecond;
    calendar.tm_min = fields.wMinute;
    calendar.tm_hour = fields.wHour - hours;
    calendar.tm_mday = fields.wDay;
    calendar.tm_mon = fields.wMonth - 1;
    calendar.tm_year = fields.wYear - 1900;
    calendar.tm_wday = fields.wDayOfWeek;
    calendar.tm_isdst = -1;
    seconds = _mktime64(&calendar);
    return true;
}
