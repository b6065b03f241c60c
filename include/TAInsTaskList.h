// The processes whose programs lie under an installation directory, for installers that replace files.
//
//     TAInsTaskList tasks;
//     char self[] = "setup";
//     if (tasks.TAInsCheckTask("C:\\Product", self) > 0) {  // everything but code\bin\setup.exe
//         char** names = nullptr;
//         int count = 0;
//         tasks.TAInsGetListTask(&names, &count);
//         for (int i = 0; i < count; ++i) puts(names[i]);
//         tasks.TAInsKillTask();
//     }
//
// Only programs with ".exe" or ".EXE" somewhere in their path count, on both targets. Paths are compared without regard
// to the case of A to Z. On Windows they are in device form (\Device\HarddiskVolume2\Product\...), on Linux they hold
// backslashes and no drive.
// What is done is told to the trace channel "TASKLIST" on standard error, see ZELTrace::Activate. Each list may be used
// by one thread at a time. Nothing throws.
#ifndef TAINSTASKLIST_H
#define TAINSTASKLIST_H

#include "ZELExport.h"
#include "ZELPlatformTypes.h"
#include "ZELTrace.h"

class ZEL_API TAInsTaskList {
public:
    TAInsTaskList() noexcept;
    TAInsTaskList(const TAInsTaskList&) = delete;
    TAInsTaskList& operator=(const TAInsTaskList&) = delete;
    ~TAInsTaskList();

    // Replaces the list by the first 100 processes, in the system's order, that run from `dir` or below, but not those
    // whose path begins with dir\code\bin\name.exe; for the name "ZELSoftwareMgt", ZELSoftwareMgtAdmin.exe beside it is
    // left out as well. These two are compared as they are put together here, so on Windows, where paths are in device
    // form, they leave nothing out unless `dir` is in that form. A null `name` leaves nothing out.
    // Returns the number. 0 for a null `dir`, for one that is empty, the root or a bare drive, for a drive that does
    // not exist, and when the system has more than 1000 processes or tells none, and when memory runs
    // out before the search.
    int TAInsCheckTask(const char* dir, char* name) noexcept;

    // Stores the number, and, when there are some, the paths of their programs, cut at 259 characters. They belong to
    // the list and are valid until the next check. Either pointer may be null.
    void TAInsGetListTask(char*** names, int* count) noexcept;

    // Ends every listed process that is still the one that was found, with exit code 0. Those that cannot be ended are
    // passed over.
    void TAInsKillTask() noexcept;

private:
    static constexpr int MaxTasks = 100;
    static constexpr int NameSize = 260;

    void Clear() noexcept;
    bool Add(int pid, __int64 born, const char* image) noexcept;

    __int64 _pids[MaxTasks];  // in the low 32 bits
    char** _names;            // MaxTasks; null without memory
    int _count = 0;
    __int64 _born[MaxTasks];  // tells a process from another that got its number
    ZELTrace _trace;
};

#endif
