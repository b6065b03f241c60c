// Signals. A process is held by a descriptor of its own while its identity is compared, so that its number cannot be
// given to another in between; a kernel without such descriptors leaves a gap of microseconds.
//
// The dangerous case is a number that stands for more than one process: 0 and negative ones never reach the system.

#include "platform/process_kill.h"

#include <signal.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <thread>

#include "base/deadline.h"
#include "platform/posix/spare_descriptors.h"

using namespace zel;

namespace {

// In a root directory without /proc no identity is known, and numbers are all there is.
bool IsBlind() {
    ProcessEntry own;
    return LookAtProcess(getpid(), own) == Sight::Gone;
}

bool Signal(const ProcessIdentity& process, int signal) {
    if (process.pid <= 0) return false;
    // Opened before the look: when the look finds the right process, the descriptor cannot stand for a later one.
    const Descriptor held = OpenWithSpares([&] { return static_cast<int>(syscall(SYS_pidfd_open, process.pid, 0)); });
    const bool isNone = !held.IsOpen() && (errno == ESRCH || errno == EINVAL || errno == ENOENT);  // or a thread
    if (isNone || (!held.IsOpen() && IsShortage(errno))) return false;
    ProcessEntry entry;
    const Sight sight = FindProcess(process, entry);
    if (sight == Sight::Untold || (sight == Sight::Gone && !(process.born == 0 && IsBlind()))) return false;
    if (held.IsOpen()) return syscall(SYS_pidfd_send_signal, held.Number(), signal, nullptr, 0) == 0;
    return kill(process.pid, signal) == 0;
}

}  // namespace

bool zel::KillProcess(const ProcessIdentity& process, unsigned int) noexcept {
    return Signal(process, SIGKILL);
}

bool zel::HoldProcess(const ProcessIdentity& process) noexcept {
    return Signal(process, SIGSTOP);
}

// Looks again and again, more rarely as time goes by: needs no descriptor and bears a process of any parent.
bool zel::AwaitProcessEnd(const ProcessIdentity& process, int milliseconds) noexcept {
    const Deadline deadline(milliseconds);
    std::chrono::microseconds pause(50);
    constexpr std::chrono::microseconds LongestPause(10000);
    ProcessEntry entry;
    while (FindProcess(process, entry) != Sight::Gone) {
        if (deadline.Left() == 0) return false;
        std::this_thread::sleep_for(pause);
        pause = std::min(2 * pause, LongestPause);
    }
    return true;
}

void zel::VisitWindows(int (*visit)(HWND window, unsigned long pid), unsigned long pid) noexcept {
    visit(nullptr, pid);
}

Answer zel::AskToEnd(HWND window, const ProcessIdentity& process) noexcept {
    constexpr int TimeToEnd = 5000;
    if (window != nullptr || !Signal(process, SIGTERM)) return Answer::NotIts;
    return AwaitProcessEnd(process, TimeToEnd) ? Answer::Ended : Answer::Stays;
}

// Rights are the user's here; there is nothing to switch on.
DebugPrivilege::DebugPrivilege() noexcept = default;
DebugPrivilege::~DebugPrivilege() = default;
void DebugPrivilege::Keep() noexcept {}

bool zel::SetTokenPrivilege(void*, const unsigned short*, bool) noexcept {
    return false;
}
