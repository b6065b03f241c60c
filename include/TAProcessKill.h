// Ending processes: politely or by force, one or a whole tree.
//
//     KillBaseProcessTree(pid, 1);  // it and whatever it started, now
//     KillBaseProcess(pid, 0);      // closes its windows, and ends it if that does not help
//
// Politely means: on Windows the process is asked to close a window (2 s to take the message, 5 s to end); on Linux it
// gets SIGTERM (5 s to end). What has no window, or does not end in time, is ended by force, with exit code 999. The
// exit code is seen by whoever waits for the process; on Linux by this library alone, for children that it started.
//
// A tree is a process and its descendants, as far as they can be told: on Windows every process names its parent for
// life; on Linux the children of a process that has ended belong to nobody, and escape. In a tree that is ended by
// force, nobody can start a process unseen: on Linux all are stopped before the first is killed. When the tree holds
// the caller, the caller is killed last.
// Numbers that no process can have are refused. A process that has ended, although its parent was not told yet, counts
// as gone. Between looking at a tree and killing in it, processes are told by their time of birth too: a number that
// was given to somebody else meanwhile is never hit.
// A tree is killed whole: the memory and the descriptors for it are reserved before the first signal, and if they do
// not suffice, no process is touched and the result is 1.
//
// These functions may be called from several threads. Polite ones block for up to 7 s for each process, and killing a
// tree until all are gone, 2 s at most; the others do not block. Nothing throws.
#ifndef TAPROCESSKILL_H
#define TAPROCESSKILL_H

#include "ZELExport.h"
#include "ZELPlatformTypes.h"
#include "ZELUnicodeString.h"

// Ends one process with that exit code. 1 when the system was told so, 0 otherwise.
ZEL_API int KillPid(unsigned long pid, unsigned int exitCode) noexcept;

// Asks the owner of a window politely, if that is `pid`. Always 0 then; 1 when it is another. Made for enumerating
// windows; what came of it is known to the CloseOrKillPid() that does that. On Linux there are no windows: a null one
// stands for the process itself, and no other belongs to anybody.
ZEL_API int EnumWindowsProc(HWND window, unsigned long pid) noexcept;

// Ends one process politely. 1 when it ended or the system was told to end it, 0 otherwise.
ZEL_API int CloseOrKillPid(unsigned long pid) noexcept;

// Ends one process, politely unless `forceOnly` is not 0. 0 on success, 1 on failure, -1 when `pid` is 0.
ZEL_API int KillBaseProcess(unsigned long pid, const int& forceOnly) noexcept;

// Ends a process and its descendants, parents before children, politely unless `forceOnly` is not 0. 0 when every kill
// succeeded, 1 when one did not or there is no such process, -1 when `pid` is 0. By force, a descendant that ended by
// itself before its turn counts as killed.
ZEL_API int KillBaseProcessTree(unsigned long pid, const int& forceOnly) noexcept;

// Switches one privilege, named in UTF-16, of an open access token on or off: 1 on success. The token stays the
// caller's. Linux has no such tokens: always 0.
ZEL_API int SetPrivilege(void* token, const unsigned short* name, int enable) noexcept;

// 1 and the process that started `pid`; 0, `parent` untouched, when that cannot be told. On Windows the parent may be
// gone and its number somebody else's.
ZEL_API int TAGetParentProcessId(unsigned long pid, unsigned long& parent) noexcept;

// 0 and when the process was started, 1 when that cannot be told. On Linux in seconds since 1970. On Windows that value
// shifted by the whole hours of the time zone's bias and daylight bias, whatever the season: tools compare such values
// with each other only, and old ones were stored so.
ZEL_API int GetEpochStartTimeOfProcess(int pid, __int64& start) noexcept;

// Ends everything that runs from one of the directories, but not the program "TADownloadRuntimeM" in the way that
// TAInsTaskList leaves a program out; with `listOnly` not 0 it only says what it would end. The first directory reaches
// to the first ";", and every further one, on purpose, to the next backslash: call it once for each directory.
// Each directory, the programs found, and the end are told on standard output.
ZEL_API void KillProcessInConcat(ZELUnicodeString directories, unsigned char listOnly) noexcept;

#endif
