#include "support/soak_system.h"

#include <windows.h>

#include <psapi.h>
#include <tlhelp32.h>
#include <winternl.h>

#include <cstdint>

namespace {

template <class Use>
void ForEachProcess(Use use) {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    PROCESSENTRY32 entry = {};
    entry.dwSize = sizeof entry;
    for (BOOL more = Process32First(snapshot, &entry); more; more = Process32Next(snapshot, &entry)) use(entry);
    CloseHandle(snapshot);
}

// As far as it is ASCII; read from the other process's own memory.
std::string CommandLineOf(HANDLE process) {
    PROCESS_BASIC_INFORMATION basic = {};
    PEB environment;
    RTL_USER_PROCESS_PARAMETERS parameters;
    if (NtQueryInformationProcess(process, ProcessBasicInformation, &basic, sizeof basic, nullptr) != 0 ||
        !ReadProcessMemory(process, basic.PebBaseAddress, &environment, sizeof environment, nullptr) ||
        !ReadProcessMemory(process, environment.ProcessParameters, &parameters, sizeof parameters, nullptr))
        return {};
    std::wstring line(parameters.CommandLine.Length / sizeof(wchar_t), L'\0');
    if (!ReadProcessMemory(process, parameters.CommandLine.Buffer, line.data(), parameters.CommandLine.Length, nullptr))
        return {};
    std::string text;
    for (const wchar_t character : line) text += static_cast<char>(character);
    return text;
}

// The processes with the mark; ended, if asked for.
std::vector<int> FindMarked(const std::string& mark, bool ends) {
    std::vector<int> found;
    ForEachProcess([&](const PROCESSENTRY32& entry) {
        if (entry.th32ProcessID == GetCurrentProcessId()) return;
        const HANDLE process = OpenProcess(PROCESS_ALL_ACCESS, FALSE, entry.th32ProcessID);
        if (process == nullptr) return;
        if (WaitForSingleObject(process, 0) == WAIT_TIMEOUT && CommandLineOf(process).find(mark) != std::string::npos) {
            found.push_back(static_cast<int>(entry.th32ProcessID));
            if (ends) TerminateProcess(process, 1);
        }
        CloseHandle(process);
    });
    return found;
}

}  // namespace

Resources ReadResources(const std::string&) {
    Resources found;
    DWORD flags;
    PROCESS_MEMORY_COUNTERS memory = {};
    found.descriptors = 0;
    for (std::intptr_t value = 4; value < 65536; value += 4)  // small multiples of four
        if (GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags)) ++found.descriptors;
    if (GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory))
        found.resident = static_cast<long>(memory.WorkingSetSize / 1024);
    found.children = 0;
    ForEachProcess([&](const PROCESSENTRY32& entry) {
        if (entry.th32ParentProcessID == GetCurrentProcessId()) ++found.children;
        if (entry.th32ProcessID == GetCurrentProcessId()) found.threads = static_cast<long>(entry.cntThreads);
    });
    return found;
}

void UseOneHeap() {}

std::vector<int> MarkedProcesses(const std::string& mark) {
    return FindMarked(mark, false);
}

void EndMarkedProcesses(const std::string& mark) {
    FindMarked(mark, true);
}

void BecomeMember(unsigned, int) {}

void ActAsMember(unsigned, const std::vector<int>&) {}

bool SetNextProcessId(int) {
    return false;
}

std::string InOwnNameSpace(const std::string&) {
    return {};
}
