// A batch of commands, of which a limited number runs at once, with a time limit for each.
//
//     TAProcessList batch(4);
//     for (const ZELString& command : commands) batch.Start(command, 600, -1);
//     while (batch.NDone() < batch.Size()) {
//         batch.Check();
//         for (int n = batch.CutLastDone(); n > 0; n = batch.CutLastDone()) Report(n, batch.GetReturnCode(n));
//     }
//
// Everything happens inside Check(), which never waits for a command, so the batch stands still while nobody calls it.
// It lends the processor to others while nothing changes; a caller with nothing else to do may still sleep in between.
// A command's number is its place in the order of Start(), from 1. What a command text means is told in TAProcess.h.
//
// Time limits are whole seconds of a clock that nobody sets. A command that exceeds its own is killed with all its
// descendants, and is dead when that Check() returns. If memory or descriptors do not suffice for its tree, the command
// alone is killed. The destructor leaves running commands alone.
// One list belongs to one thread at a time. Nothing throws.
#ifndef TAPROCESSLIST_H
#define TAPROCESSLIST_H

#include "TAProcess.h"
#include "ZELExport.h"
#include "ZELListPtr.h"
#include "ZELRawColl.h"
#include "ZELString.h"

class ZEL_API TAProcessList {
public:
    // Up to 10 commands at once, or as many as `limit` says. -1 stands for 10, and other limits below 1 count as 1.
    TAProcessList() noexcept;
    explicit TAProcessList(int limit) noexcept;
    TAProcessList(const TAProcessList&) = delete;
    TAProcessList& operator=(const TAProcessList&) = delete;
    ~TAProcessList();

    // Puts a command in line and returns its number; -1 when memory runs out. `timeout` is in seconds, 0 for none, and
    // a negative one is over at once. `output` gets what the command writes; empty, or left out: as the caller's own.
    // `limit` is how many may run when this one starts, itself included; -1 for the list's own.
    int Start(ZELString command, int timeout, ZELString output, int limit) noexcept;
    int Start(ZELString command, int timeout, int limit) noexcept;

    // Looks who has ended, kills who is late, and starts who may run; the command that was put in line last starts
    // first. 1 when a command's status changed, else 0; -1 when the list got no memory. A command that cannot be
    // started is done, with return code 203, and told of on standard output ("ERROR launching ").
    int Check() noexcept;
    // The number of a command that ended or was killed in the latest Check(), each once; -1 when none is left.
    int CutLastDone() noexcept;

    // 0 waiting, 1 running, 2 done; -1 outside 1 to Size().
    int GetStatus(int number) const noexcept;
    // The exit code of one that is done: 99 when it was late, 15 when KillInternalListOfProcess() ended it. 0 before;
    // -1 outside 1 to Size().
    int GetReturnCode(int number) const noexcept;

    int NWaiting() const noexcept { return _waiting.Size(); }
    int NRunning() const noexcept { return _running.Size(); }
    int NDone() const noexcept { return _done.Size(); }
    int Size() const noexcept { return _entries != nullptr ? _entries->Size() : 0; }

    // Kills every running command with all its descendants. Always 0. The next Check() counts them as done; those in
    // line stay there.
    int KillInternalListOfProcess() noexcept;

    // From now on each Check() that changed something says on standard output which commands run.
    void SetDebugMode() noexcept { _debug = 1; }

private:
    struct Entry;

    Entry& At(int number) const noexcept;
    void Finish(int position, int returnCode) noexcept;
    bool CollectFinished() noexcept;
    bool KillLate() noexcept;
    bool LaunchWaiting() noexcept;
    bool Launch(int number) noexcept;
    void TraceRunning() const noexcept;

    ZELListPtr<Entry>* _entries;  // owned, with what it points to; null without memory
    ZELRawCollint _waiting;
    ZELRawCollint _running;
    ZELRawCollint _done;
    ZELRawCollint _lastDone;
    int _defaultLimit;
    int _currentLimit;
    int _debug = 0;
};

#endif
