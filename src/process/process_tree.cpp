// A tree is gathered by looking through all processes again and again, until a look adds nobody; each look costs a few
// microseconds for every process of the machine. Parents enter in front of their children, and are killed in that
// order.
//
// The dangerous case is a tree that grows while it is looked at. When it will be killed by force, whoever enters is
// held at once, and who is held starts nobody: so every look leaves fewer that can start others, and those that began
// during one look are found by the next. The kill begins when a look met none but stopped members, since one that was
// held in the midst of starting somebody finishes that first. Where processes cannot be held, a child names its parent
// beyond the parent's death, so there whoever enters is killed at once.
//
// The other dangerous case is a kill that runs out of memory or descriptors half-way: the descendants of dead members
// are out of reach. So a first look goes without a signal and reserves all that the kill needs, for a tree of twice the
// size. If that fails, no member is touched; if the tree then outgrows its room, the kill goes on as far as it can.

#include "process/process_tree.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

#include "base/deadline.h"
#include "base/failure_report.h"
#include "platform/process_kill.h"
#include "platform/system.h"
#include "process/child_ledger.h"
#include "process/polite_end.h"

using namespace zel;

bool ProcessEntries::Reserve(int count) noexcept {
    if (_entries.Reserve(static_cast<std::size_t>(count))) return true;
    ReportAllocFailure("ProcessEntries", static_cast<std::size_t>(count) * sizeof(ProcessEntry));
    return false;
}

bool ProcessEntries::Append(const ProcessEntry& entry) noexcept {
    constexpr int First = 64;
    if (_entries.Size() == _entries.Capacity() && !Reserve(std::max(First, 2 * Size()))) return false;
    return _entries.Append(entry);
}

const ProcessEntry* ProcessEntries::Find(int pid) const noexcept {
    for (std::size_t i = _entries.Size(); i > 0; --i)
        if (_entries[i - 1].self.pid == pid) return &_entries[i - 1];
    return nullptr;
}

void ProcessEntries::Sort() noexcept {
    std::sort(_entries.begin(), _entries.end(), [](const ProcessEntry& left, const ProcessEntry& right) {
        if (left.self.born != right.self.born) return left.self.born < right.self.born;
        return left.self.pid < right.self.pid;
    });
}

bool zel::ListProcesses(ProcessEntries& all) noexcept {
    const auto append = [](const ProcessEntry& entry, void* to) { static_cast<ProcessEntries*>(to)->Append(entry); };
    const bool isListed = VisitProcesses(append, &all);
    all.Sort();
    return isListed;
}

namespace {

bool End(const ProcessIdentity& process, bool forceOnly) {
    return forceOnly ? KillAndNote(process, ForcedExitCode) : EndPolitely(process) == 1;
}

class ProcessTree {
public:
    explicit ProcessTree(bool forceOnly) noexcept : _forceOnly(forceOnly) {}

    // A root, before the kill.
    void Add(const ProcessEntry& root) noexcept { Enter(root); }
    // Kills all members, and those that are started meanwhile; the caller last. False when one may be left, and
    // without a signal to any when memory or descriptors do not suffice for the tree as it is.
    bool Kill() noexcept;

private:
    // Looks at the tree without a signal, and reserves room for one of twice the size.
    bool Prepare() noexcept;
    void KillAll() noexcept;
    // During the kill, a member is held or killed at once.
    void Enter(const ProcessEntry& entry) noexcept;
    // By force, a member that cannot be held is killed at once.
    void Seize(const ProcessEntry& entry) noexcept;
    void KillOthers() noexcept;
    // Until everybody but the caller is gone, or the time is over.
    void AwaitEnds() const noexcept;
    void KillCaller() noexcept;
    // Enters the children of members, unless the system did not list all processes before.
    void Look() noexcept;
    void Consider(const ProcessEntry& entry) noexcept;
    void KillWaiting() noexcept;
    void KillMember(const ProcessEntry& entry) noexcept;

    const bool _forceOnly;
    const int _caller = GetOwnProcessId();
    ProcessWatch _watch;
    ProcessEntries _members;
    ProcessEntries _waiting;  // to be killed, from _next on; by force, all of them are held
    int _next = 0;
    int _killed = 0;
    bool _isKilling = false;
    bool _isComplete = true;  // false when a member could not be entered, or a look did not show all processes
    ProcessEntry::Activity _activity = ProcessEntry::IsStopped;  // of the busiest that is held, at the latest look
};

// A member that is killed at first sight may be starting, and end by itself since its parent was killed: by force, a
// descendant that is gone counts as killed. A kill may fail because another thread took a descriptor; since the member
// may be held, it must not be left so.
void ProcessTree::KillMember(const ProcessEntry& entry) noexcept {
    constexpr int Tries = 20;
    const bool isRoot = entry.self.pid == _members[0].self.pid;
    bool isKilled = End(entry.self, _forceOnly);
    bool isGone = false;
    for (int i = 0; _forceOnly && !isKilled && !isGone && i < Tries; ++i) {
        isGone = AwaitProcessEnd(entry.self, i == 0 ? 0 : 1);
        isKilled = !isGone && End(entry.self, true);
    }
    if (isKilled || (isGone && !isRoot)) ++_killed;
}

// By force, leaves first: a child is entered after its parent. If a parent died before the stopped children, a process
// group of theirs could become an orphan, and the kernel continues such a group: a member that ignores SIGHUP would
// then start others before its own end.
void ProcessTree::KillWaiting() noexcept {
    const int begin = std::exchange(_next, _waiting.Size());
    if (_forceOnly)
        for (int i = _next - 1; i >= begin; --i) KillMember(_waiting[i]);
    else
        for (int i = begin; i < _next; ++i) KillMember(_waiting[i]);
}

void ProcessTree::Seize(const ProcessEntry& entry) noexcept {
    if (entry.self.pid == _caller) return;
    const bool canWait = !_forceOnly || HoldProcess(entry.self);
    if (!canWait || !_waiting.Append(entry)) KillMember(entry);
}

void ProcessTree::Enter(const ProcessEntry& entry) noexcept {
    if (!_members.Append(entry)) _isComplete = false;
    if (_isKilling) Seize(entry);
}

void ProcessTree::Consider(const ProcessEntry& entry) noexcept {
    const ProcessEntry* const known = _members.Find(entry.self.pid);
    if (known != nullptr && known->self.born == entry.self.born) {
        if (entry.activity < _activity && _waiting.Find(entry.self.pid) != nullptr) _activity = entry.activity;
        return;
    }
    // Numbers are given again while a tree grows and is killed: any member that had it may be the parent.
    const auto isParent = [&](const ProcessEntry& member) {
        return member.self.pid == entry.parent && CanBeChild(entry, member);
    };
    if (std::any_of(_members.begin(), _members.end(), isParent)) Enter(entry);
}

void ProcessTree::Look() noexcept {
    const auto consider = [](const ProcessEntry& entry, void* tree) {
        static_cast<ProcessTree*>(tree)->Consider(entry);
    };
    _isComplete = _isComplete && _watch.Visit(consider, this);
}

void ProcessTree::KillOthers() noexcept {
    // Looks in vain: who waits in the system, as for a child that became no program yet, may do so for ever.
    constexpr int MostWhileBlocked = 5;
    constexpr int MostWhileActing = 200;
    for (int vainLooks = 0; _isComplete; ++vainLooks) {
        const int before = _members.Size();
        _activity = ProcessEntry::IsStopped;
        Look();
        if (!_forceOnly) KillWaiting();
        if (_members.Size() != before) {
            vainLooks = 0;
            continue;
        }
        const int most = _activity == ProcessEntry::Acts ? MostWhileActing : MostWhileBlocked;
        if (!_forceOnly || _activity == ProcessEntry::IsStopped || vainLooks >= most) break;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    KillWaiting();
}

void ProcessTree::AwaitEnds() const noexcept {
    constexpr int LongestWait = 2000;
    const Deadline deadline(LongestWait);
    for (const ProcessEntry& member : _members)
        if (member.self.pid != _caller) AwaitProcessEnd(member.self, deadline.Left());
}

void ProcessTree::KillCaller() noexcept {
    const ProcessEntry* const caller = _members.Find(_caller);
    if (caller != nullptr) KillMember(*caller);
}

// A start that was under way when its process was killed may come to sight only when that is gone.
void ProcessTree::KillAll() noexcept {
    for (int before = 0; _isComplete && before != _members.Size();) {
        KillOthers();
        AwaitEnds();
        before = _members.Size();
        Look();
    }
    KillCaller();
}

bool ProcessTree::Prepare() noexcept {
    constexpr int LeastRoom = 64;
    Look();
    const int room = 2 * _members.Size() + LeastRoom;
    return _isComplete && _members.Reserve(room) && _waiting.Reserve(room);
}

bool ProcessTree::Kill() noexcept {
    if (!Prepare()) return false;
    _isKilling = true;
    for (const ProcessEntry& member : _members) Seize(member);
    KillAll();
    return _isComplete && _killed == _members.Size();
}

}  // namespace

int zel::KillProcessTree(const ProcessIdentity& root, bool forceOnly) noexcept {
    ProcessEntry entry = {root};
    const Sight sight = FindProcess(root, entry);
    if (sight == Sight::There) {
        ProcessTree tree(forceOnly);
        tree.Add(entry);
        return tree.Kill() ? 0 : 1;
    }
    const auto ignore = [](const ProcessEntry&, void*) {};
    if (sight == Sight::Gone && !VisitProcesses(ignore, nullptr)) End(root, forceOnly);  // the system lists no process
    return 1;
}

bool zel::KillProcessTrees(const ProcessEntries& roots) noexcept {
    ProcessTree tree(true);
    for (const ProcessEntry& root : roots) tree.Add(root);
    return tree.Kill();
}
