// A command moves from the waiting numbers to the running ones and on to the done ones. Lists that may lose elements
// are walked from the end, so that what is removed does not shift what is still to be seen.
//
// The dangerous case is a command whose process is over for the list before the system says so: one that was killed
// from outside of Check() keeps its place among the running until its end was seen, so that nothing of it is left.

#include "TAProcessList.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <thread>
#include <utility>

#include "TADiagnostics.h"
#include "base/deadline.h"
#include "base/failure_report.h"
#include "base/memory.h"
#include "process/process_tree.h"

using namespace zel;

namespace {

using Clock = std::chrono::steady_clock;

enum Status { Waiting, Running, Done };

constexpr int OwnLimit = -1;
constexpr int DefaultLimit = 10;
constexpr int LateCode = 99;
constexpr int KilledCode = 15;
constexpr int NotStartedCode = 203;

int ValidLimit(int limit, int own) {
    return limit == OwnLimit ? own : std::max(limit, 1);
}

}  // namespace

struct TAProcessList::Entry {
    ZELString command;
    TAProcess process;
    int status = Waiting;
    __int64 deadline = 0;  // in seconds since 1970, for whoever looks at it in a debugger; 0 for none
    int timeout = 0;
    int returnCode = 0;
    int parallelLimit = OwnLimit;
    Clock::time_point end = {};  // of the time limit, on the clock that counts

    void StartClock() noexcept {
        deadline = timeout != 0 ? std::time(nullptr) + timeout : 0;
        end = Clock::now() + std::chrono::seconds(timeout);
    }
    bool IsLate(Clock::time_point now) const noexcept { return status == Running && deadline != 0 && now >= end; }
    // A child that runs, which the process object keeps open: its number is nobody else's.
    void AddRoot(ProcessEntries& roots) const noexcept {
        ProcessEntry root;
        if (ReadProcess(process.GetprocessID(), root) && !root.hasEnded) roots.Append(root);
    }
    // Kills a command whose tree could not be killed, its own child alone.
    void KillAlone() noexcept {
        constexpr int LongestWait = 2000;
        const Deadline limit(LongestWait);
        int exitCode = 0;
        process.Kill();
        while (process.Check(exitCode) == 0 && limit.Left() > 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    void AddLate(Clock::time_point now, ProcessEntries& roots) const noexcept {
        if (IsLate(now)) AddRoot(roots);
    }
};

TAProcessList::TAProcessList() noexcept : TAProcessList(OwnLimit) {}

TAProcessList::TAProcessList(int limit) noexcept
    : _entries(ZELNew<ZELListPtr<Entry>>()),
      _defaultLimit(ValidLimit(limit, DefaultLimit)),
      _currentLimit(_defaultLimit) {
    if (_entries == nullptr) ReportAllocFailure("TAProcessList", sizeof *_entries);
}

TAProcessList::~TAProcessList() {
    if (_entries != nullptr)
        for (const Entry* entry : *_entries) ZELDelete(entry);
    ZELDelete(_entries);
}

int TAProcessList::Start(ZELString command, int timeout, ZELString output, int limit) noexcept {
    const bool isWhole = !command.IsIncomplete() && !output.IsIncomplete();
    Entry* const entry = isWhole && _entries != nullptr ? ZELNew<Entry>() : nullptr;
    if (entry == nullptr) {
        ReportAllocFailure("TAProcessList", sizeof(Entry));
        return -1;
    }
    const int number = Size() + 1;
    // Room everywhere first, so that no number gets lost on its way.
    const bool hasRoom = _waiting.Reserve(number) == 0 && _running.Reserve(number) == 0 && _done.Reserve(number) == 0 &&
                         _lastDone.Reserve(number) == 0;
    if (!hasRoom || _entries->Append(entry) != 0) {
        ZELDelete(entry);
        return -1;
    }
    entry->command = std::move(command);
    entry->timeout = timeout;
    entry->parallelLimit = limit;
    entry->process.SetOutput(std::move(output));
    _waiting.Append(number);
    return number;
}

int TAProcessList::Start(ZELString command, int timeout, int limit) noexcept {
    return Start(std::move(command), timeout, ZELString(), limit);
}

int TAProcessList::Check() noexcept {
    if (_entries == nullptr) return -1;
    _lastDone.RemoveAll(ZELCollec::KeepMemory);
    bool isChanged = CollectFinished();
    isChanged = KillLate() || isChanged;
    isChanged = LaunchWaiting() || isChanged;
    if (isChanged && _debug != 0) TraceRunning();
    if (!isChanged && NRunning() > 0) std::this_thread::yield();
    return isChanged ? 1 : 0;
}

TAProcessList::Entry& TAProcessList::At(int number) const noexcept {
    return *std::as_const(*_entries)[number];
}

// Moves the running command at `position` to the done ones.
void TAProcessList::Finish(int position, int returnCode) noexcept {
    const int number = _running[position];
    At(number).status = Done;
    At(number).returnCode = returnCode;
    _done.Append(number);
    _lastDone.Append(number);
    _running.RemovePosition(position);
}

bool TAProcessList::CollectFinished() noexcept {
    const int before = NDone();
    for (int position = NRunning(); position >= 1; --position) {
        Entry& entry = At(_running[position]);
        int exitCode = 0;
        if (entry.process.Check(exitCode) == 1) Finish(position, entry.status == Done ? entry.returnCode : exitCode);
    }
    return NDone() != before;
}

bool TAProcessList::KillLate() noexcept {
    const int before = NDone();
    const Clock::time_point now = Clock::now();
    ProcessEntries roots;
    for (const int number : _running) At(number).AddLate(now, roots);
    if (roots.Size() > 0) KillProcessTrees(roots);
    for (int position = NRunning(); position >= 1; --position) {
        Entry& entry = At(_running[position]);
        if (!entry.IsLate(now)) continue;
        int exitCode = 0;
        if (entry.process.Check(exitCode) == 0) entry.KillAlone();
        // One that could not be killed is nobody's from here on, and goes when it ends.
        entry.process = TAProcess();
        Finish(position, LateCode);
    }
    return NDone() != before;
}

bool TAProcessList::LaunchWaiting() noexcept {
    bool isChanged = false;
    while (NRunning() < _currentLimit && NWaiting() > 0) {
        const int number = _waiting[NWaiting()];
        const int limit = ValidLimit(At(number).parallelLimit, _defaultLimit);
        if (limit != _currentLimit) {
            _currentLimit = limit;
            continue;
        }
        _waiting.RemovePosition(NWaiting());
        if (Launch(number))
            _running.Append(number);
        else
            _done.Append(number);
        isChanged = true;
    }
    return isChanged;
}

bool TAProcessList::Launch(int number) noexcept {
    Entry& entry = At(number);
    if (entry.process.Start(entry.command, 0) == 0) {
        entry.StartClock();
        entry.status = Running;
        return true;
    }
    Trace("ERROR launching " + entry.command + ": " + entry.process.GetErrMsg(), 0);
    entry.status = Done;
    entry.returnCode = NotStartedCode;
    return false;
}

void TAProcessList::TraceRunning() const noexcept {
    if (NRunning() == 0) return;
    ZELString line("RUNNING COMMANDS: ");
    for (int position = NRunning(); position >= 1; --position) {
        line += "\"";
        line += At(_running[position]).command;
        line += "\"; ";
    }
    Trace(line, 0);
}

int TAProcessList::CutLastDone() noexcept {
    if (_lastDone.Size() == 0) return -1;
    const int number = _lastDone[1];
    _lastDone.RemovePosition(1);
    return number;
}

int TAProcessList::GetStatus(int number) const noexcept {
    return number >= 1 && number <= Size() ? At(number).status : -1;
}

int TAProcessList::GetReturnCode(int number) const noexcept {
    return number >= 1 && number <= Size() ? At(number).returnCode : -1;
}

int TAProcessList::KillInternalListOfProcess() noexcept {
    ProcessEntries roots;
    for (int position = NRunning(); position >= 1; --position) {
        Entry& entry = At(_running[position]);
        if (entry.status != Running) continue;
        int exitCode = 0;
        if (entry.process.Check(exitCode) == 0) {
            entry.AddRoot(roots);
            exitCode = KilledCode;
        }
        entry.status = Done;
        entry.returnCode = exitCode;
    }
    if (roots.Size() > 0) KillProcessTrees(roots);
    for (const int number : _running) At(number).process.Kill();  // if its tree could not be
    return 0;
}
