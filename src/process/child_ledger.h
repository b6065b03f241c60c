// The children that this library started, until somebody saw their end.
#ifndef PROCESS_CHILD_LEDGER_H
#define PROCESS_CHILD_LEDGER_H

#include "ZELShared.h"
#include "platform/process_launch.h"
#include "platform/process_table.h"

namespace zel {

// What the copies of a process object know together. Guarded by the ledger's lock.
struct TAChild {
    ChildProcess process;
    bool isOpen = false;    // false: somebody saw the end
    bool isOver = false;    // the end is known, and `exitCode` with it
    bool wasAsked = false;  // to end
    bool wasKilled = false;
    int killCode = 0;  // of the first kill
    int exitCode = 0;
    int waiters = 0;  // threads that need the system's entry to stay

    ZELShared<TAChild> self;  // the ledger's own; alone when every object has dropped the child
    TAChild* next = nullptr;
    TAChild* previous = nullptr;
};

enum class ChildState { Running, Over, NotOpen, Untold };

// Empty when memory ran out (said on standard output).
ZELShared<TAChild> MakeChild() noexcept;
// Begins to keep a child that has just been started.
void EnterChild(const ZELShared<TAChild>& child, ChildProcess process) noexcept;
// Forgets the children that no object stands for and that are over.
void ReapDroppedChildren() noexcept;

// Over: `exitCode` is set.
ChildState LookAtChild(TAChild& child, int& exitCode) noexcept;
// The same, when the child is over.
ChildState AwaitChild(TAChild& child, int& exitCode) noexcept;
void CloseChild(TAChild& child) noexcept;
// Pid 0 for one that is not open.
ProcessIdentity IdentityOfChild(TAChild& child) noexcept;

// Ends a process, whoever started it; one of ours then has that exit code on both targets. False when the system
// refuses, or the process is over.
bool KillAndNote(const ProcessIdentity& process, unsigned int exitCode) noexcept;
// The same for an open child, by what the ledger holds of it: works without memory, descriptors and a list of
// processes.
bool KillChild(TAChild& child, unsigned int exitCode) noexcept;
// Notes that a process is about to be asked to end: one of ours that dies of it has the exit code of a forced end.
void NoteRequest(const ProcessIdentity& process) noexcept;

constexpr unsigned int ForcedExitCode = 999;

}  // namespace zel

#endif
