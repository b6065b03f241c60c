// A tree is gathered by looking through all processes again and again, until a look adds nobody; each look costs a few
// microseconds for every process of the machine. Parents enter in front of their children, and are killed in that
// order.
//
// The dangerous case is a tree that grows while it is looked at. When it will be killed by force, whoever enters is
// held at once, and who is held starts nobody: so every look leaves fewer that can start others, and those that began
// during one look are found by the next. The kill begins when a look met none but stopped members, since one that was
// held in the midst of starting somebody finishes that first. Where processes cannot be held, a child names its parent
// beyond the parent's death, so there whoever enters is killed at once.

#include "process/process_tree.h"

#include <algorithm>
#include <chrono>
#include <thread>

#include "base/deadline.h"
#include "base/failure_report.h"
#include "platform/process_kill.h"
#include "platform/system.h"
#include "process/child_ledger.h"
#include "process/polite_end.h"

using namespace zel;

bool ProcessEntries::Append(const ProcessEntry& entry) noexcept {
    constexpr std::size_t First = 64;
    const std::size_t room = std::max(First, 2 * _entries.Capacity());
    if ((_entries.Size() < _entries.Capacity() || _entries.Reserve(room)) && _entries.Append(entry)) return true;
    ReportAllocFailure("ProcessEntries", room * sizeof entry);
    return false;
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

    // By force, who cannot be held is killed at once.
    void Enter(const ProcessEntry& entry) noexcept;
    // Kills everybody, and who is started meanwhile; the caller last. False when the system lists no processes.
    bool KillAll() noexcept;
    // False also when memory did not suffice for all members.
    bool IsKilled() const noexcept { return _isComplete && _killed == _members.Size(); }

private:
    bool KillOthers() noexcept;
    // Until everybody but the caller is gone, or the time is over.
    void AwaitEnds() const noexcept;
    void KillCaller() noexcept;
    // Enters the children of members. False when the system lists no processes.
    bool Look() noexcept;
    void Consider(const ProcessEntry& entry) noexcept;
    void KillWaiting() noexcept {
        while (_next < _waiting.Size()) Kill(_waiting[_next++]);
    }
    void Kill(const ProcessEntry& entry) noexcept;

    const bool _forceOnly;
    const int _caller = GetOwnProcessId();
    ProcessEntries _members;
    ProcessEntries _waiting;  // to be killed, from _next on; by force, all of them are held
    int _next = 0;
    int _killed = 0;
    bool _isComplete = true;
    ProcessEntry::Activity _activity = ProcessEntry::IsStopped;  // of the busiest that is held, at the latest look
};

// Who is killed as soon as he comes to sight may be in the midst of his own start, and end by himself since his parent
// was killed: by force, a descendant that is gone counts as killed.
void ProcessTree::Kill(const ProcessEntry& entry) noexcept {
    const bool isKilled = End(entry.self, _forceOnly);
    const bool isRoot = entry.self.pid == _members[0].self.pid;
    if (isKilled || (_forceOnly && !isRoot && AwaitProcessEnd(entry.self, 0))) ++_killed;
}

void ProcessTree::Enter(const ProcessEntry& entry) noexcept {
    if (!_members.Append(entry)) {
        _isComplete = false;
        return;
    }
    if (entry.self.pid == _caller) return;
    const bool canWait = !_forceOnly || HoldProcess(entry.self);
    if (!canWait || !_waiting.Append(entry)) Kill(entry);
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

bool ProcessTree::Look() noexcept {
    const auto consider = [](const ProcessEntry& entry, void* tree) {
        static_cast<ProcessTree*>(tree)->Consider(entry);
    };
    return VisitProcesses(consider, this);
}

bool ProcessTree::KillOthers() noexcept {
    // Looks in vain: who waits in the system, as for a child that became no program yet, may do so for ever.
    constexpr int MostWhileBlocked = 5;
    constexpr int MostWhileActing = 200;
    bool isListed = true;
    for (int vainLooks = 0; isListed; ++vainLooks) {
        const int before = _members.Size();
        _activity = ProcessEntry::IsStopped;
        isListed = Look();
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
    return isListed;
}

void ProcessTree::AwaitEnds() const noexcept {
    constexpr int LongestWait = 2000;
    const Deadline deadline(LongestWait);
    for (const ProcessEntry& member : _members)
        if (member.self.pid != _caller) AwaitProcessEnd(member.self, deadline.Left());
}

void ProcessTree::KillCaller() noexcept {
    const ProcessEntry* const caller = _members.Find(_caller);
    if (caller != nullptr) Kill(*caller);
}

// A start that was under way when its process was killed may come to sight only when that is gone.
bool ProcessTree::KillAll() noexcept {
    bool isListed = true;
    for (int before = 0; isListed && before != _members.Size();) {
        isListed = KillOthers();
        AwaitEnds();
        before = _members.Size();
        isListed = isListed && Look();
    }
    KillCaller();
    return isListed;
}

}  // namespace

int zel::KillProcessTree(const ProcessIdentity& root, bool forceOnly) noexcept {
    ProcessEntry entry = {root};
    const bool isThere =
        ReadProcess(root.pid, entry) && !entry.hasEnded && (root.born == 0 || root.born == entry.self.born);
    if (!isThere) {
        const auto ignore = [](const ProcessEntry&, void*) {};
        if (!VisitProcesses(ignore, nullptr)) End(root, forceOnly);  // nobody at all is in sight
        return 1;
    }
    ProcessTree tree(forceOnly);
    tree.Enter(entry);
    const bool isListed = tree.KillAll();
    return isListed && tree.IsKilled() ? 0 : 1;
}

void zel::KillProcessTrees(const ProcessEntries& roots) noexcept {
    ProcessTree tree(true);
    for (const ProcessEntry& root : roots) tree.Enter(root);
    tree.KillAll();
}
