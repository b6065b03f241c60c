// Ending processes, whoever started them. Every function looks at the identity before it acts, in a way that nobody
// can slip in between where the system allows (Windows: handles; Linux: descriptors of processes, from 5.3 on).
#ifndef PLATFORM_PROCESS_KILL_H
#define PLATFORM_PROCESS_KILL_H

#include "ZELPlatformTypes.h"
#include "platform/process_table.h"

namespace zel {

// Ends a process by force; `exitCode` is what it ends with (Linux: not used). False when it has ended or is somebody
// else by now, or when the system refuses.
bool KillProcess(const ProcessIdentity& process, unsigned int exitCode) noexcept;

// Keeps a process from starting others until it is killed (Linux: SIGSTOP; one that is starting somebody at this very
// moment does so, and is stopped then). False when that failed, and where the system has no such thing, as on Windows.
bool HoldProcess(const ProcessIdentity& process) noexcept;

// Sleeps until the process has ended, but no longer than that. True when it has.
bool AwaitProcessEnd(const ProcessIdentity& process, int milliseconds) noexcept;

// Calls `visit` for every top-level window until it returns 0. Linux: once, with a null window.
void VisitWindows(int (*visit)(HWND window, unsigned long pid), unsigned long pid) noexcept;

enum class Answer {
    NotIts,  // the window belongs to another process, or the process cannot be asked
    Ended,   // within the time
    Stays,
    Unreached,  // the window did not take the message in time
    Unknown,    // the message was taken, but nobody can tell what became of the process
};
// Asks the process to end: closes the window that is its own (Linux: SIGTERM, for a null window). Blocks for up to 7 s.
Answer AskToEnd(HWND window, const ProcessIdentity& process) noexcept;

// While one lives, the process may look at and end processes of other users, where the system has that and grants it
// (Windows: SeDebugPrivilege).
class DebugPrivilege {
public:
    DebugPrivilege() noexcept;
    DebugPrivilege(const DebugPrivilege&) = delete;
    DebugPrivilege& operator=(const DebugPrivilege&) = delete;
    ~DebugPrivilege();
    // The process keeps the privilege from now on.
    void Keep() noexcept;

private:
    void* _token = nullptr;
};

// As SetPrivilege of TAProcessKill.h.
bool SetTokenPrivilege(void* token, const unsigned short* name, bool enable) noexcept;

}  // namespace zel

#endif
