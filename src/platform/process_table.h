// Looking at processes, whoever started them.
#ifndef PLATFORM_PROCESS_TABLE_H
#define PLATFORM_PROCESS_TABLE_H

#include <climits>
#include <cstdint>

namespace zel {

// A process for as long as the system runs: the system reuses numbers, but not with the same birth.
struct ProcessIdentity {
    int pid;
    // When it began, on a scale of the system that only grows: Windows 100 ns steps, Linux clock ticks. 0: unknown; the
    // number alone counts.
    std::int64_t born;
};

// The identity of any process that has the number at the moment of use. The pid is 0, which no function accepts, for
// numbers that no process can have.
constexpr ProcessIdentity IdentityByNumber(unsigned long pid) noexcept {
    return {pid <= INT_MAX ? static_cast<int>(pid) : 0, 0};
}

struct ProcessEntry {
    // Whether it could start others at this moment: not when it is stopped; when it is blocked in the system, not soon.
    // Windows does not tell: every process acts there.
    enum Activity { Acts, IsBlocked, IsStopped };

    ProcessIdentity self;
    int parent = 0;         // on Windows the parent may be gone
    bool hasEnded = false;  // only what its parent or launcher has not asked for is left of it
    Activity activity = Acts;
};

enum class Sight {
    There,
    Gone,    // no process, or one that may not be looked at
    Untold,  // the system lacks a descriptor or memory for its reply
};
// There: `entry` is set; otherwise it is untouched.
Sight LookAtProcess(int pid, ProcessEntry& entry) noexcept;

inline bool ReadProcess(int pid, ProcessEntry& entry) noexcept {
    return LookAtProcess(pid, entry) == Sight::There;
}

// The same for one certain process. A process that has ended is gone.
inline Sight FindProcess(const ProcessIdentity& process, ProcessEntry& entry) noexcept {
    const Sight sight = LookAtProcess(process.pid, entry);
    const bool isIt = process.born == 0 || process.born == entry.self.born;
    return sight == Sight::There && (entry.hasEnded || !isIt) ? Sight::Gone : sight;
}

using ProcessVisit = void (*)(const ProcessEntry& entry, void* context);

// Calls `visit` for every process that can be looked at and has not ended, in the system's order: there is no limit to
// their number. False when the system lists none, or lacked something for a part of them.
bool VisitProcesses(ProcessVisit visit, void* context) noexcept;

// Visits all processes again and again. While it exists, it reserves the memory and the descriptors that its visits
// need, and looks and kills of the thread that made it between them: other threads cannot use these up.
class ProcessWatch {
public:
    ProcessWatch() noexcept;
    ProcessWatch(const ProcessWatch&) = delete;
    ProcessWatch& operator=(const ProcessWatch&) = delete;
    ~ProcessWatch();

    // False when the system lacks something, or lists no processes.
    bool IsReady() const noexcept { return _state != nullptr; }
    // As VisitProcesses.
    bool Visit(ProcessVisit visit, void* context) noexcept;

private:
    struct State;

    State* _state = nullptr;
};

// Seconds since 1970, on Windows with the shifts that GetEpochStartTimeOfProcess tells; false when it cannot be told.
bool GetStartTime(int pid, std::int64_t& seconds) noexcept;

}  // namespace zel

#endif
