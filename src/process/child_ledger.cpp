// A list of open children under one lock. The system keeps a child's entry, and with it the child's number, until the
// ledger gives it back, so an open child's number never stands for anybody else. Nobody else's children are asked for.
//
// Starting, looking and closing cost a constant; a kill and the search for dropped children go through the list.
// The dangerous case is a thread that waits, without the lock, while another one closes the child: the entry is then
// given back by the last one that waits.

#include "process/child_ledger.h"

#include <mutex>
#include <new>
#include <utility>

#include "base/failure_report.h"
#include "platform/process_kill.h"

using namespace zel;

namespace {

struct Ledger {
    std::mutex lock;
    TAChild* first = nullptr;

    TAChild* Find(int pid) const noexcept {
        for (TAChild* child = first; child != nullptr; child = child->next)
            if (child->process.Pid() == pid) return child;
        return nullptr;
    }
    void Link(TAChild& child) noexcept {
        child.next = first;
        if (first != nullptr) first->previous = &child;
        first = &child;
    }
    void Unlink(TAChild& child) noexcept {
        (child.previous != nullptr ? child.previous->next : first) = child.next;
        if (child.next != nullptr) child.next->previous = child.previous;
        child.next = child.previous = nullptr;
    }
};

Ledger& TheLedger() noexcept {
    alignas(Ledger) static unsigned char room[sizeof(Ledger)];
    static Ledger* const made = new (room) Ledger;
    return *made;
}

// All functions from here to the end of the namespace run under the lock.

int ExitCodeOf(const TAChild& child, const ChildEnd& end) noexcept {
    if (end.how == ChildEnd::Killed && child.wasKilled) return child.killCode;
    if (end.how == ChildEnd::AskedToEnd && child.wasAsked) return static_cast<int>(ForcedExitCode);
    return end.code;
}

ChildState Look(TAChild& child) noexcept {
    if (child.isOver) return ChildState::Over;
    ChildEnd end;
    if (!child.process.GetEnd(end)) return ChildState::Untold;
    if (end.how == ChildEnd::Running) return ChildState::Running;
    child.isOver = true;
    child.exitCode = ExitCodeOf(child, end);
    return ChildState::Over;
}

void NoteKill(TAChild& child, unsigned int exitCode) noexcept {
    if (!child.wasKilled) child.killCode = static_cast<int>(exitCode);
    child.wasKilled = true;
}

// Gives the system's entry back and ends the ledger's share in the child, which `child` may be the last to hold.
void GiveBack(TAChild& child) noexcept {
    child.process.Close();
    TheLedger().Unlink(child);
    const ZELShared<TAChild> last(std::move(child.self));
}

}  // namespace

ZELShared<TAChild> zel::MakeChild() noexcept {
    ZELShared<TAChild> child = ZELShared<TAChild>::Make();
    if (!child) ReportAllocFailure("TAProcess", sizeof(TAChild));
    return child;
}

void zel::EnterChild(const ZELShared<TAChild>& child, ChildProcess process) noexcept {
    const std::lock_guard guard(TheLedger().lock);
    child->process = std::move(process);
    child->isOpen = true;
    child->self = child;
    TheLedger().Link(*child);
}

void zel::ReapDroppedChildren() noexcept {
    const std::lock_guard guard(TheLedger().lock);
    for (TAChild *child = TheLedger().first, *next = nullptr; child != nullptr; child = next) {
        next = child->next;
        if (child->self.use_count() == 1 && Look(*child) != ChildState::Running) GiveBack(*child);
    }
}

ChildState zel::LookAtChild(TAChild& child, int& exitCode) noexcept {
    const std::lock_guard guard(TheLedger().lock);
    if (!child.isOpen) return ChildState::NotOpen;
    const ChildState state = Look(child);
    if (state == ChildState::Over) exitCode = child.exitCode;
    return state;
}

ChildState zel::AwaitChild(TAChild& child, int& exitCode) noexcept {
    std::unique_lock guard(TheLedger().lock);
    if (!child.isOpen) return ChildState::NotOpen;
    if (!child.isOver) {
        ++child.waiters;
        guard.unlock();
        child.process.AwaitEnd();
        guard.lock();
        --child.waiters;
    }
    const ChildState state = Look(child);
    if (state == ChildState::Over) exitCode = child.exitCode;
    if (!child.isOpen && child.waiters == 0 && child.self) GiveBack(child);
    return state;
}

void zel::CloseChild(TAChild& child) noexcept {
    const std::lock_guard guard(TheLedger().lock);
    child.isOpen = false;
    if (child.waiters == 0 && child.self) GiveBack(child);
}

ProcessIdentity zel::IdentityOfChild(TAChild& child) noexcept {
    const std::lock_guard guard(TheLedger().lock);
    ProcessEntry entry = {{child.process.Pid(), 0}};
    if (!child.isOpen) return {0, 0};
    ReadProcess(entry.self.pid, entry);
    return entry.self;
}

bool zel::KillAndNote(const ProcessIdentity& process, unsigned int exitCode) noexcept {
    const std::lock_guard guard(TheLedger().lock);
    if (!KillProcess(process, exitCode)) return false;
    TAChild* const child = TheLedger().Find(process.pid);
    if (child != nullptr) NoteKill(*child, exitCode);
    return true;
}

bool zel::KillChild(TAChild& child, unsigned int exitCode) noexcept {
    const std::lock_guard guard(TheLedger().lock);
    if (!child.isOpen || !child.process.Kill(exitCode)) return false;
    NoteKill(child, exitCode);
    return true;
}

void zel::NoteRequest(const ProcessIdentity& process) noexcept {
    const std::lock_guard guard(TheLedger().lock);
    TAChild* const child = TheLedger().Find(process.pid);
    if (child != nullptr) child->wasAsked = true;
}
