// Thin functions over the ledger, the tree and the seam. A polite end goes through the enumeration of windows, whose
// visitor is public and takes a number only: what it found, and for whom certainly, is kept for each thread.

#include "TAProcessKill.h"

#include <climits>

#include "TADiagnostics.h"
#include "TAInsTaskList.h"
#include "ZELToken.h"
#include "platform/process_kill.h"
#include "process/child_ledger.h"
#include "process/process_tree.h"

namespace {

using platform::ProcessIdentity;

// Numbers that no process can have become 0, which no function below takes.
ProcessIdentity Anybody(unsigned long pid) {
    return {pid <= INT_MAX ? static_cast<int>(pid) : 0, 0};
}

struct PoliteEnd {
    ProcessIdentity process;
    bool isFound;
    int result;
};

thread_local PoliteEnd polite = {};

int Force(const ProcessIdentity& process) {
    return KillAndNote(process, ForcedExitCode) ? 1 : 0;
}

}  // namespace

int KillPid(unsigned long pid, unsigned int exitCode) noexcept {
    return KillAndNote(Anybody(pid), exitCode) ? 1 : 0;
}

int EnumWindowsProc(HWND window, unsigned long pid) noexcept {
    ProcessIdentity process = Anybody(pid);
    if (process.pid == polite.process.pid) process = polite.process;
    if (process.pid == 0) return 1;
    const platform::Answer answer = platform::AskToEnd(window, process);
    if (answer == platform::Answer::NotIts) return 1;
    polite.isFound = true;
    if (answer == platform::Answer::Ended)
        polite.result = 1;
    else
        polite.result = answer == platform::Answer::Unknown ? 0 : Force(process);
    return 0;
}

int EndPolitely(const ProcessIdentity& process) noexcept {
    if (process.pid <= 0) return 0;
    NoteRequest(process);
    polite = {process, false, 0};
    platform::VisitWindows(EnumWindowsProc, static_cast<unsigned long>(process.pid));
    const PoliteEnd outcome = polite;
    polite = {};
    return outcome.isFound ? outcome.result : Force(process);
}

int CloseOrKillPid(unsigned long pid) noexcept {
    return EndPolitely(Anybody(pid));
}

int KillBaseProcess(unsigned long pid, const int& forceOnly) noexcept {
    if (pid == 0) return -1;
    const platform::DebugPrivilege privilege;
    const int killed = forceOnly != 0 ? KillPid(pid, ForcedExitCode) : CloseOrKillPid(pid);
    return killed == 1 ? 0 : 1;
}

int KillBaseProcessTree(unsigned long pid, const int& forceOnly) noexcept {
    if (pid == 0) return -1;
    const ProcessIdentity root = Anybody(pid);
    if (root.pid == 0) return 1;
    const platform::DebugPrivilege privilege;
    return KillProcessTree(root, forceOnly != 0);
}

int SetPrivilege(void* token, const unsigned short* name, int enable) noexcept {
    return name != nullptr && platform::SetTokenPrivilege(token, name, enable != 0) ? 1 : 0;
}

int TAGetParentProcessId(unsigned long pid, unsigned long& parent) noexcept {
    platform::ProcessEntry entry;
    if (!platform::ReadProcess(Anybody(pid).pid, entry)) return 0;
    parent = static_cast<unsigned long>(entry.parent);
    return 1;
}

int GetEpochStartTimeOfProcess(int pid, __int64& start) noexcept {
    std::int64_t seconds = 0;
    if (!platform::GetStartTime(pid, seconds)) return 1;
    start = seconds;
    return 0;
}

void KillProcessInConcat(ZELUnicodeString directories, unsigned char listOnly) noexcept {
    char spared[] = "TADownloadRuntimeM";
    ZELToken tokens(directories);
    const char* separator = ";";
    for (ZELUnicodeString directory; (directory = tokens.GetNextToken(separator)).GetLengthInChar() > 0;) {
        separator = "\\";
        const ZELString path(directory.CastToCharPtr());
        Trace(ZELString("Looking for processes running in directory ") + path, 0);
        TAInsTaskList tasks;
        if (tasks.TAInsCheckTask(path, spared) <= 0) continue;
        if (listOnly == 0) tasks.TAInsKillTask();
        char** names = nullptr;
        int count = 0;
        tasks.TAInsGetListTask(&names, &count);
        Trace("Processes listed below will be killed:", 0);
        for (int i = 0; i < count; ++i) Trace(names[i], 0);
    }
    Trace("KillProcessInConcat - End\n ", 0);
}
