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

// False, `entry` untouched, for a number that no process has, or one that may not be looked at.
bool ReadProcess(int pid, ProcessEntry& entry) noexcept;

// Calls `visit` for every process that can be looked at and has not ended, in the system's order: there is no limit to
// their number. False when the system lists none.
bool VisitProcesses(void (*visit)(const ProcessEntry& entry, void* context), void* context) noexcept;

// Seconds since 1970, on Windows with the shifts that GetEpochStartTimeOfProcess tells; false when it cannot be told.
bool GetStartTime(int pid, std::int64_t& seconds) noexcept;

}  // namespace zel

#endif
