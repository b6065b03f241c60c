// Processes by descent.
#ifndef PROCESS_PROCESS_TREE_H
#define PROCESS_PROCESS_TREE_H

#include "base/growing_array.h"
#include "platform/process_table.h"

namespace zel {

// A growing list of processes. When memory runs out, what does not fit is left out (said on standard output).
class ProcessEntries {
public:
    ProcessEntries() noexcept = default;
    ProcessEntries(const ProcessEntries&) = delete;
    ProcessEntries& operator=(const ProcessEntries&) = delete;

    int Size() const noexcept { return static_cast<int>(_entries.Size()); }
    const ProcessEntry& operator[](int index) const noexcept { return _entries[static_cast<std::size_t>(index)]; }
    const ProcessEntry* begin() const noexcept { return _entries.begin(); }
    const ProcessEntry* end() const noexcept { return _entries.end(); }
    // False when memory ran out.
    bool Append(const ProcessEntry& entry) noexcept;
    // Makes room for so many in all; false when memory ran out.
    bool Reserve(int count) noexcept;
    // The last one of that number; null when there is none.
    const ProcessEntry* Find(int pid) const noexcept;
    // By birth, then by number, so that a process stands behind its parent.
    void Sort() noexcept;

private:
    GrowingArray<ProcessEntry> _entries;
};

// Whether a process that names `parent` as its parent can be its child: nobody is older than who started him.
inline bool CanBeChild(const ProcessEntry& child, const ProcessEntry& parent) noexcept {
    return child.self.born >= parent.self.born;
}

// All processes, sorted. False when the system lists none.
bool ListProcesses(ProcessEntries& all) noexcept;

// As KillBaseProcessTree of TAProcessKill.h, for one certain process.
int KillProcessTree(const ProcessIdentity& root, bool forceOnly) noexcept;

// Ends several trees by force, together: most of the cost is in looking at all processes. False when a member may be
// left; if memory or descriptors run out before the first kill, all members are left.
bool KillProcessTrees(const ProcessEntries& roots) noexcept;

}  // namespace zel

#endif
