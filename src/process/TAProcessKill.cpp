// Thin functions over the ledger, the tree and the seam.

#include "TAProcessKill.h"

#include "TADiagnostics.h"
#include "TAInsTaskList.h"
#include "ZELToken.h"
#include "platform/process_kill.h"
#include "process/child_ledger.h"
#include "process/polite_end.h"
#include "process/process_tree.h"

using namespace zel;

int KillPid(unsigned long pid, unsigned int exitCode) noexcept {
    return KillAndNote(IdentityByNumber(pid), exitCode) ? 1 : 0;
}

int CloseOrKillPid(unsigned long pid) noexcept {
    return EndPolitely(IdentityByNumber(pid));
}

int KillBaseProcess(unsigned long pid, const int& forceOnly) noexcept {
    if (pid == 0) return -1;
    const DebugPrivilege privilege;
    const int killed = forceOnly != 0 ? KillPid(pid, ForcedExitCode) : CloseOrKillPid(pid);
    return killed == 1 ? 0 : 1;
}

int KillBaseProcessTree(unsigned long pid, const int& forceOnly) noexcept {
    if (pid == 0) return -1;
    const ProcessIdentity root = IdentityByNumber(pid);
    if (root.pid == 0) return 1;
    const DebugPrivilege privilege;
    return KillProcessTree(root, forceOnly != 0);
}

int SetPrivilege(void* token, const unsigned short* name, int enable) noexcept {
    return name != nullptr && SetTokenPrivilege(token, name, enable != 0) ? 1 : 0;
}

int TAGetParentProcessId(unsigned long pid, unsigned long& parent) noexcept {
    ProcessEntry entry;
    if (!ReadProcess(IdentityByNumber(pid).pid, entry)) return 0;
    parent = static_cast<unsigned long>(entry.parent);
    return 1;
}

int GetEpochStartTimeOfProcess(int pid, __int64& start) noexcept {
    std::int64_t seconds = 0;
    if (!GetStartTime(pid, seconds)) return 1;
    start = seconds;
    return 0;
}

void KillProcessInConcat(ZELUnicodeString directories, unsigned char listOnly) noexcept {
    char spared[] = "TADownloadRuntimeM";
    ZELToken tokens(directories);
    // The beginning of a name would name other directories.
    if (directories.IsIncomplete()) return;
    const char* separator = ";";
    for (ZELUnicodeString directory; (directory = tokens.GetNextToken(separator)).GetLengthInChar() > 0;) {
        separator = "\\";
        const ZELString path(directory.CastToCharPtr());
        if (path.Length() == 0) continue;
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
