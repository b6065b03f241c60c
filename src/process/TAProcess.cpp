// A process object is a number, the share in a child that the ledger keeps, and the texts. Objects that stand for
// somebody else's process keep its birth instead.
//
// The dangerous case is a number that outlives its process: once an object's child is closed, by it or by a copy, the
// object's number is for reading only.

#include "TAProcess.h"

#include <cstdlib>
#include <string_view>
#include <utility>

#include "TADiagnostics.h"
#include "platform/process_kill.h"
#include "platform/system.h"
#include "process/child_ledger.h"
#include "process/process_tree.h"

using namespace zel;

namespace {

enum Status { NoChild = 201, CannotTell = 202, NoProcess = 203, StillRuns = 259 };

constexpr const char* CannotTellMessage = "Unable to get child process indormation";
constexpr const char* NoMemory = "Not enough memory";
constexpr unsigned int KillCode = 99;

}  // namespace

struct TAProcess::Target {
    ProcessIdentity process;  // pid 0 when the object stands for nobody who could be hit
    bool isOver;
};

TAProcess::TAProcess() noexcept : _message("no error") {}

TAProcess::TAProcess(int& pid) noexcept : _message("no error"), _pid(pid) {
    ProcessEntry entry;
    if (ReadProcess(pid, entry)) _born = entry.self.born;
}

TAProcess::TAProcess(const TAProcess&) noexcept = default;
TAProcess& TAProcess::operator=(const TAProcess&) noexcept = default;
TAProcess::~TAProcess() = default;

int TAProcess::Fail(const char* reason, const ZELString& detail) noexcept {
    _message = reason + detail;
    return 1;
}

int TAProcess::SetOutput(ZELString path) noexcept {
    _output = std::move(path);
    return _output.IsIncomplete() ? Fail(NoMemory) : 0;
}

int TAProcess::SetInput(ZELString path) noexcept {
    _input = std::move(path);
    return _input.IsIncomplete() ? Fail(NoMemory) : 0;
}

int TAProcess::Start(ZELString command, int) noexcept {
    if (command.IsIncomplete() || _output.IsIncomplete() || _input.IsIncomplete()) return Fail(NoMemory);
    if (command.View().find_first_not_of(' ') == std::string_view::npos)
        return Fail("No command given, no process started");
    ReapDroppedChildren();
    if (Launch(Command(command.View())) == 0) return 0;
    _pid = 0;
    return 1;
}

int TAProcess::Launch(const Command& command) noexcept {
    ChildFile input, output;
    if (_output.Length() > 0 && !output.OpenForWriting(_output)) return Fail("Unable to redirect output in ", _output);
    if (_input.Length() > 0 && !input.OpenForReading(_input)) return Fail("Unable to redirect input in ", _input);
    ZELShared<TAChild> child = MakeChild();
    if (!child) return Fail(NoMemory);
    ChildProcess process;
    LaunchFailure failure;
    bool isStarted = zel::Launch(command, input, output, process, failure);
    if (!isStarted && !failure.isTooLong && command.IsComplete())
        isStarted = zel::Launch(command.SecondTry(), input, output, process, failure);
    ResetRemoteKill();
    if (!isStarted) return Fail(failure.text);
    _pid = process.Pid();
    _born = 0;
    EnterChild(child, std::move(process));
    _child = std::move(child);
    return 0;
}

int TAProcess::Check(int& status) noexcept {
    status = NoProcess;
    if (_pid == 0) return 0;
    status = NoChild;
    if (!_child) return 1;
    const ChildState state = LookAtChild(*_child, status);
    if (state == ChildState::NotOpen || state == ChildState::Untold) {
        status = CannotTell;
        return Fail(CannotTellMessage);
    }
    if (state == ChildState::Running) status = StillRuns;
    if (status == StillRuns) return 0;
    CloseChild(*_child);
    _child.reset();
    return 1;
}

int TAProcess::Wait(int& exitCode) noexcept {
    const ZELShared<TAChild> child = _child;  // this object may be given another one meanwhile
    const ChildState state = child ? AwaitChild(*child, exitCode) : ChildState::NotOpen;
    if (state == ChildState::Over) return 0;
    if (state == ChildState::NotOpen) return Fail("Unable to wait for child process");
    exitCode = CannotTell;
    return Fail(CannotTellMessage);
}

TAProcess::Target TAProcess::TheTarget() const noexcept {
    if (!_child) return {{_born != 0 ? _pid : 0, _born}, false};
    int exitCode = 0;
    const ChildState state = LookAtChild(*_child, exitCode);
    return {IdentityOfChild(*_child), state == ChildState::Over};
}

int TAProcess::Kill() noexcept {
    const bool isKilled = _child ? KillChild(*_child, KillCode) : KillAndNote(TheTarget().process, KillCode);
    if (isKilled || TheTarget().isOver) return 0;
    return Fail("Unable to get child process handle");
}

int TAProcess::KillTree() noexcept {
    if (_pid == 0) return -1;
    const ProcessIdentity root = TheTarget().process;
    if (root.pid == 0) return 1;
    const DebugPrivilege privilege;
    return KillProcessTree(root, true);
}

int TAProcess::GetProcessTree(ZELListValZELString& list) noexcept {
    if (_pid == 0) return -1;
    if (list.Size() == 0) list.Append(toString(_pid));
    DebugPrivilege privilege;
    privilege.Keep();
    ProcessEntries all;
    if (!ListProcesses(all) && all.Size() == 0) KillAndNote(TheTarget().process, ForcedExitCode);
    for (const ProcessEntry& entry : all) {
        const ZELString number = toString(entry.self.pid);
        if (list.Locate(number) != 0 || list.Locate(toString(entry.parent)) == 0) continue;
        const ProcessEntry* const parent = all.Find(entry.parent);
        if (parent == nullptr || CanBeChild(entry, *parent)) list.Append(number);
    }
    return 0;
}

int TAProcess::Getpid() noexcept {
    return GetOwnProcessId();
}

int TAProcess::Exec(ZELString command) noexcept {
    const int result = command.IsIncomplete() ? -1 : std::system(command);
    return result < 256 ? result : result / 256;
}

int TAProcess::ZombiClean() noexcept {
    return 0;
}
