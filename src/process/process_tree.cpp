// A tree is gathered by looking through all processes again and again, until a look adds nobody; each look costs a few
// microseconds for every process of the machine. Parents enter in front of their children, and are killed in that
// order.
//
// The dangerous case is a tree that grows while it is looked at. When it will be killed by force, whoever enters is
// held at once, and who is held starts nobody: so every look leaves fewer that can start others, and those that began
// during one look are found by the next. Where processes cannot be held they keep naming their parent after its death,
// and are found by another look behind the kill.

#include "process/process_tree.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>

#include "foundations/console.h"
#include "platform/process_kill.h"
#include "platform/system.h"
#include "process/child_ledger.h"

using platform::ProcessEntry;

ProcessEntries::~ProcessEntries() {
    std::free(_entries);
}

bool ProcessEntries::Append(const ProcessEntry& entry) noexcept {
    if (_size == _room) {
        constexpr int First = 64;
        const int room = _room == 0 ? First : 2 * _room;
        const std::size_t size = static_cast<std::size_t>(room) * sizeof(ProcessEntry);
        auto* const moved = static_cast<ProcessEntry*>(std::realloc(_entries, size));
        if (moved == nullptr) {
            ReportAllocFailure("ProcessEntries", size);
            return false;
        }
        _entries = moved;
        _room = room;
    }
    _entries[_size++] = entry;
    return true;
}

const ProcessEntry* ProcessEntries::Find(int pid) const noexcept {
    for (int i = _size - 1; i >= 0; --i)
        if (_entries[i].self.pid == pid) return &_entries[i];
    return nullptr;
}

void ProcessEntries::Sort() noexcept {
    std::sort(_entries, _entries + _size, [](const ProcessEntry& left, const ProcessEntry& right) {
        if (left.self.born != right.self.born) return left.self.born < right.self.born;
        return left.self.pid < right.self.pid;
    });
}

bool ListProcesses(ProcessEntries& all) noexcept {
    const auto append = [](const ProcessEntry& entry, void* to) { static_cast<ProcessEntries*>(to)->Append(entry); };
    const bool isListed = platform::VisitProcesses(append, &all);
    all.Sort();
    return isListed;
}

namespace {

class ProcessTree {
public:
    explicit ProcessTree(bool forceOnly) noexcept : _forceOnly(forceOnly) {}

    void Enter(const ProcessEntry& entry) noexcept {
        if (!_members.Append(entry)) return;
        if (_forceOnly && entry.self.pid != _caller) platform::HoldProcess(entry.self);
    }
    // Looks until nobody is added. False when the system lists no processes.
    bool Grow() noexcept;
    // Kills everybody but the caller, and who is started meanwhile.
    void KillOthers() noexcept;
    // Until everybody but the caller is gone, or the time is over.
    void AwaitEnds() const noexcept;
    void KillCaller() noexcept;
    bool IsKilled() const noexcept { return _killed == _members.Size(); }

private:
    void Consider(const ProcessEntry& entry) noexcept;
    void Kill(const ProcessEntry& entry) noexcept {
        const bool isKilled = _forceOnly ? KillAndNote(entry.self, ForcedExitCode) : EndPolitely(entry.self) == 1;
        if (isKilled) ++_killed;
    }

    const bool _forceOnly;
    const int _caller = platform::GetOwnProcessId();
    ProcessEntries _members;
    int _killed = 0;
};

void ProcessTree::Consider(const ProcessEntry& entry) noexcept {
    const ProcessEntry* const known = _members.Find(entry.self.pid);
    if (known != nullptr && known->self.born == entry.self.born) return;
    const ProcessEntry* const parent = _members.Find(entry.parent);
    if (parent != nullptr && CanBeChild(entry, *parent)) Enter(entry);
}

bool ProcessTree::Grow() noexcept {
    const auto consider = [](const ProcessEntry& entry, void* tree) {
        static_cast<ProcessTree*>(tree)->Consider(entry);
    };
    for (int before = -1; before != _members.Size();) {
        before = _members.Size();
        if (!platform::VisitProcesses(consider, this)) return false;
    }
    return true;
}

void ProcessTree::KillOthers() noexcept {
    for (int next = 0; next < _members.Size();) {
        for (; next < _members.Size(); ++next)
            if (_members[next].self.pid != _caller) Kill(_members[next]);
        if (!Grow()) return;
    }
}

void ProcessTree::AwaitEnds() const noexcept {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point end = Clock::now() + std::chrono::seconds(2);
    for (const ProcessEntry& member : _members) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        if (member.self.pid != _caller) platform::AwaitProcessEnd(member.self, left > 0 ? static_cast<int>(left) : 0);
    }
}

void ProcessTree::KillCaller() noexcept {
    const ProcessEntry* const caller = _members.Find(_caller);
    if (caller != nullptr) Kill(*caller);
}

}  // namespace

int KillProcessTree(const platform::ProcessIdentity& root, bool forceOnly) noexcept {
    ProcessEntry entry = {root, 0, false};
    const bool isThere =
        platform::ReadProcess(root.pid, entry) && !entry.hasEnded && (root.born == 0 || root.born == entry.self.born);
    ProcessTree tree(forceOnly);
    if (isThere) tree.Enter(entry);
    if (!tree.Grow()) {  // nothing can be told about descendants
        if (forceOnly)
            KillAndNote(root, ForcedExitCode);
        else
            EndPolitely(root);
        return 1;
    }
    if (!isThere) return 1;
    tree.KillOthers();
    tree.AwaitEnds();
    tree.KillCaller();
    return tree.IsKilled() ? 0 : 1;
}
