// One child program: started from a command text, polled, waited for, killed alone or with all its descendants.
//
//     TAProcess compiler;
//     compiler.SetOutput("build\\main.log");
//     if (compiler.Start("cc -c main.c", 0) != 0) TraceErr(compiler.GetErrMsg());
//     int exitCode = 0;
//     if (compiler.Wait(exitCode) == 0 && exitCode != 0) Show("build\\main.log");
//
// For many commands at once, with time limits, use TAProcessList; for what a shell does, Exec().
//
// How a command text becomes a program and its arguments is the same on both targets; docs/commands.md shows it.
// A child gets the caller's working directory, environment, standard streams and whatever else the caller made
// inheritable, and nothing that belongs to this library. It finds its launcher's process id in the variable RemoteKill;
// in the caller, that variable is "NO" once a start was tried. On Linux it starts with no signal blocked or ignored.
//
// Copies share one child. Whoever first sees through Check() that it is over closes it for all: the other copies can
// no longer inspect it. A child that no object stands for any more runs on, and what the system keeps of it is given
// back by the first Start() after its end. Destructors neither wait nor kill.
// An object may stand for a process that it did not start; such a process can be killed and listed only. It is told
// by its number and its time of birth, so that a later process of the same number is never hit.
//
// Operations return 0 for success and 1 for failure unless told otherwise; GetErrMsg() then says why. Nothing throws.
// Only Wait() and Exec() block. Distinct objects, copies among them, may be used from distinct threads.
#ifndef TAPROCESS_H
#define TAPROCESS_H

#include <cstdint>

#include "ZELExport.h"
#include "ZELListValZELString.h"
#include "ZELPlatformTypes.h"
#include "ZELShared.h"
#include "ZELString.h"

namespace zel {
class Command;
struct TAChild;  // the knowledge of a child that copies share
}  // namespace zel

class ZEL_API TAProcess {
public:
    TAProcess() noexcept;
    // Stands for the running process of that number. 0 stands for none.
    TAProcess(int& pid) noexcept;
    TAProcess(const TAProcess&) noexcept;
    TAProcess& operator=(const TAProcess&) noexcept;
    ~TAProcess();

    // For the next Start(): the file that gets the child's standard output and standard error, made or emptied first,
    // and the one that its standard input is read from. Empty: as the caller's own. Both streams share one position, so
    // that neither overwrites the other. Always 0.
    int SetOutput(ZELString path) noexcept;
    int SetInput(ZELString path) noexcept;

    // Starts the child. A program that cannot be executed is a failure of this call; it is tried once more with ".bat"
    // behind its name. A child that the object stood for before is left to itself. After a failure the process id is 0,
    // but a command without words leaves it as it was. The number is not used.
    int Start(ZELString command, int) noexcept;

    // 1 when the child is over or cannot be inspected, 0 while it runs or when there is none. `status` gets the exit
    // code, or
    //   201  the object has no child open: it saw the end already, or never started the process
    //   202  the exit code cannot be read: a copy saw the end, or the caller has the system throw it away
    //   203  no process: never started, or the start failed (the result is 0)
    //   259  it runs. A child that ends with this very code counts as running for ever.
    // A child that was killed through this library ends with the code that the first kill named. On Linux, a child that
    // ended by another signal has 128 + its number.
    int Check(int& status) noexcept;
    // Waits for the end, without time limit, and stores the exit code; a Check() still sees it. On failure `exitCode`
    // is 202, or untouched when there was nothing to wait for.
    int Wait(int& exitCode) noexcept;

    // Ends the process with exit code 99. A child that is over but not yet seen by a Check() counts as killed, and its
    // exit code stays.
    int Kill() noexcept;
    // Ends the process and its descendants with exit code 999. Results as KillBaseProcessTree of TAProcessKill.h.
    int KillTree() noexcept;
    // Adds the process (when the list is empty) and the descendants of all in the list, as decimal numbers, parents in
    // front of their children. -1 without a process id, else 0. When the system cannot list its processes, this one is
    // killed with code 999: a tree that cannot be seen cannot be supervised.
    int GetProcessTree(ZELListValZELString& list) noexcept;

    // What went wrong last; "no error" before that. A success does not reset it.
    ZELString GetErrMsg() const noexcept { return _message; }
    int GetprocessID() const noexcept { return _pid; }
    // Always 0.
    __int64 GetStartTimeInMs() const noexcept { return 0; }

    // The calling process.
    static int Getpid() noexcept;
    // Runs the command by the C runtime's system() and waits for it. Its result if below 256, else divided by 256: the
    // exit code, where nothing else happened. -1 for an incomplete text.
    static int Exec(ZELString command) noexcept;
    // Does nothing and returns 0: ended children need no help of the caller's.
    static int ZombiClean() noexcept;

private:
    struct Target;

    int Fail(const char* reason, const ZELString& detail = {}) noexcept;
    int Launch(const zel::Command& command) noexcept;
    Target TheTarget() const noexcept;

    ZELString _message;
    ZELString _output;
    ZELString _input;
    int _pid = 0;
    std::int64_t _born = 0;          // of a process that was not started here, as zel::ProcessIdentity tells
    ZELShared<zel::TAChild> _child;  // empty once this object saw its end
};

#endif
