// A launch in named steps: take the line apart, plan the program, the files and the environment, clone, and hear what
// became of it.
//
// The child shares the caller's memory until its program takes over, and the calling thread sleeps meanwhile (as vfork
// does it), so the cost does not grow with the caller, and a failed exec is reported through plain memory. All memory
// is prepared before; the child makes system calls alone, and those directly, since the C library's wrappers keep notes
// that belong to the caller.
//
// The dangerous cases: a signal handler of the caller's that runs in the child would change the caller's memory, so all
// signals are blocked until the child has given up every handler; and a redirected file on descriptor 0, 1 or 2, which
// the child would lose while it puts the next one in place, so files are moved above those at once.

#include "platform/process_launch.h"

#include <fcntl.h>
#include <sched.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "base/compiler.h"
#include "platform/native_path.h"
#include "platform/posix/child_environment.h"
#include "platform/posix/descriptor.h"
#include "platform/posix/program_plan.h"

using namespace zel;

// Instrumented code would leave its marks in the caller's shadow memory.
#define ZEL_RUNS_IN_CHILD ZEL_NO_SANITIZE

// The C library's clone under its other name, which sanitizers leave alone: the one that they put in the place of clone
// takes the child for a process with memory of its own.
extern "C" int __clone(int (*function)(void*), void* stack, int flags, void* argument, ...) noexcept;

namespace {

constexpr std::size_t KernelMaskSize = 8;  // bytes of the kernel's set of signals, whatever sigset_t holds

struct Child {
    const ProgramPlan* plan;
    char** environment;
    int input;
    int output;
    int error;  // of the step that failed; 0 when the program took over
};

ZEL_RUNS_IN_CHILD void ResetSignals() {
    constexpr int SignalCount = 64;
    const unsigned long defaultAction[4] = {};  // handler, flags, restorer, mask
    for (int number = 1; number <= SignalCount; ++number)
        syscall(SYS_rt_sigaction, number, defaultAction, nullptr, KernelMaskSize);
    const unsigned long none = 0;
    syscall(SYS_rt_sigprocmask, SIG_SETMASK, &none, nullptr, KernelMaskSize);
}

ZEL_RUNS_IN_CHILD bool PlaceFile(int file, int stream) {
    return file < 0 || syscall(SYS_dup2, file, stream) >= 0;
}

ZEL_RUNS_IN_CHILD void Execute(const Child& child, const char* path) {
    syscall(SYS_execve, path, child.plan->arguments, child.environment);
    if (errno != ENOEXEC) return;
    child.plan->shellArguments[1] = const_cast<char*>(path);
    syscall(SYS_execve, child.plan->shellArguments[0], child.plan->shellArguments, child.environment);
}

// Writes the next place of `folders` where the program may be to the plan's room; the rest of `folders`, or null.
ZEL_RUNS_IN_CHILD const char* NextCandidate(const ProgramPlan& plan, const char* folders) {
    char* out = plan.candidate;
    while (*folders != '\0' && *folders != ':') *out++ = *folders++;
    if (out != plan.candidate) *out++ = '/';  // an empty entry is the working directory
    for (const char* name = plan.program; (*out++ = *name++) != '\0';) {
    }
    return *folders == ':' ? folders + 1 : nullptr;
}

// Returns only when nothing could be executed; the error that says most is left in errno.
ZEL_RUNS_IN_CHILD void ExecuteAlongPath(const Child& child) {
    bool isForbidden = false;
    const char* folders = child.plan->searchPath;
    while (folders != nullptr) {
        folders = NextCandidate(*child.plan, folders);
        Execute(child, child.plan->candidate);
        if (errno == EACCES)
            isForbidden = true;
        else if (errno != ENOENT && errno != ENOTDIR && errno != ELOOP && errno != ENAMETOOLONG)
            return;
    }
    errno = isForbidden ? EACCES : ENOENT;
}

ZEL_RUNS_IN_CHILD int RunChild(void* made) {
    Child& child = *static_cast<Child*>(made);
    ResetSignals();
    const bool isReady = PlaceFile(child.input, 0) && PlaceFile(child.output, 1) && PlaceFile(child.output, 2);
    if (isReady && child.plan->searchPath == nullptr)
        Execute(child, child.plan->program);
    else if (isReady)
        ExecuteAlongPath(child);
    child.error = errno;
    syscall(SYS_exit_group, 127);
    return 127;
}

// Returns when the child's program has taken over or the child has ended; its number, or -1.
int CloneChild(Child& child) {
    constexpr std::size_t StackSize = 16384;
    alignas(16) char stack[StackSize];
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    const int pid = __clone(RunChild, stack + StackSize, CLONE_VM | CLONE_VFORK | SIGCHLD, &child);
    const int error = errno;
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    errno = error;
    return pid;
}

void Reap(int pid) {
    siginfo_t about;
    RetryInterrupted([&] { return waitid(P_PID, static_cast<id_t>(pid), &about, WEXITED); });
}

void DescribeLimit(const Command& command, const ProgramPlan& plan, LaunchFailure& failure) {
    constexpr std::size_t LongestArgument = 131071;  // the kernel's MAX_ARG_STRLEN, without the terminator
    auto limit = static_cast<std::size_t>(sysconf(_SC_ARG_MAX));
    for (char** text = plan.arguments; *text != nullptr; ++text)
        if (std::strlen(*text) > LongestArgument) limit = LongestArgument;
    DescribeTooLong(std::strlen(command.Line()), limit, failure);
}

void Describe(int error, LaunchFailure& failure) {
    failure.isTooLong = false;
    char room[sizeof failure.text];
    std::snprintf(failure.text, sizeof failure.text, "%s", strerror_r(error, room, sizeof room));
}

// Moves a new descriptor above the standard streams, which the caller may have closed.
int MoveAboveStreams(Descriptor file) {
    if (!file.IsOpen() || file.Number() > STDERR_FILENO) return file.Release();
    return fcntl(file.Number(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
}

}  // namespace

ChildFile::~ChildFile() {
    Descriptor(static_cast<int>(_file)).Close();
}

bool ChildFile::OpenForWriting(const char* path) noexcept {
    const NativePath native(path);
    if (native.Text() == nullptr) return false;
    constexpr int Flags = O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOCTTY;
    _file = MoveAboveStreams(Descriptor(RetryInterrupted([&] { return open(native.Text(), Flags, 0666); })));
    return IsOpen();
}

bool ChildFile::OpenForReading(const char* path) noexcept {
    const NativePath native(path);
    if (native.Text() == nullptr) return false;
    Descriptor file(RetryInterrupted([&] { return open(native.Text(), O_RDONLY | O_CLOEXEC | O_NOCTTY); }));
    struct stat status;
    if (!file.IsOpen() || fstat(file.Number(), &status) != 0 || S_ISDIR(status.st_mode)) return false;
    _file = MoveAboveStreams(std::move(file));
    return IsOpen();
}

bool ChildProcess::GetEnd(ChildEnd& end) const noexcept {
    siginfo_t about;
    about.si_pid = 0;
    const auto look = [&] { return waitid(P_PID, static_cast<id_t>(_pid), &about, WEXITED | WNOHANG | WNOWAIT); };
    if (RetryInterrupted(look) != 0) return false;
    end = {};
    if (about.si_pid == 0) return true;
    end.how = ChildEnd::Exited;
    end.code = about.si_status;
    if (about.si_code == CLD_EXITED) return true;
    if (about.si_status == SIGKILL) end.how = ChildEnd::Killed;
    if (about.si_status == SIGTERM) end.how = ChildEnd::AskedToEnd;
    end.code += 128;
    return true;
}

bool ChildProcess::Kill(unsigned int) const noexcept {
    ChildEnd end;
    // Opened before the look: where the process ignores SIGCHLD, an ended child gives its number up.
    const Descriptor held(static_cast<int>(syscall(SYS_pidfd_open, _pid, 0)));
    if (_pid <= 0 || !GetEnd(end) || end.how != ChildEnd::Running) return false;
    if (held.IsOpen()) return syscall(SYS_pidfd_send_signal, held.Number(), SIGKILL, nullptr, 0) == 0;
    return kill(_pid, SIGKILL) == 0;
}

void ChildProcess::AwaitEnd() const noexcept {
    siginfo_t about;
    RetryInterrupted([&] { return waitid(P_PID, static_cast<id_t>(_pid), &about, WEXITED | WNOWAIT); });
}

void ChildProcess::Close() noexcept {
    if (_pid == 0) return;
    siginfo_t about;
    RetryInterrupted([&] { return waitid(P_PID, static_cast<id_t>(_pid), &about, WEXITED | WNOHANG); });
    _pid = 0;
}

bool zel::Launch(const Command& command, const ChildFile& input, const ChildFile& output, ChildProcess& child,
                 LaunchFailure& failure) noexcept {
    ProgramPlan plan;
    const ChildEnvironment environment;
    if (!command.IsComplete() || !plan.Make(command) || environment.Texts() == nullptr) {
        Describe(ENOMEM, failure);
        return false;
    }
    Child started = {&plan, environment.Texts(), static_cast<int>(input.Native()), static_cast<int>(output.Native()),
                     0};
    const int pid = CloneChild(started);
    if (pid < 0) started.error = errno;
    if (started.error == 0) {
        child = ChildProcess(pid);
        return true;
    }
    if (pid > 0) Reap(pid);
    if (started.error == E2BIG)
        DescribeLimit(command, plan, failure);
    else
        Describe(started.error, failure);
    return false;
}
