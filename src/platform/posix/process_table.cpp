// What /proc tells. Numbers are read behind the last bracket of a process's line, since its name, which stands in
// brackets in front of them, may hold anything.

#include "platform/process_table.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

#include "base/failure_report.h"
#include "base/memory.h"
#include "platform/posix/spare_descriptors.h"

using namespace zel;

namespace {

Sight SightAfterFailure() {
    return IsShortage(errno) ? Sight::Untold : Sight::Gone;
}

// Reads a small file whole, as text.
Sight ReadText(int folder, const char* name, char* text, std::size_t size) {
    const Descriptor file = OpenWithSpares([&] { return openat(folder, name, O_RDONLY | O_CLOEXEC); });
    if (!file.IsOpen()) return SightAfterFailure();
    const ssize_t length = RetryInterrupted([&] { return read(file.Number(), text, size - 1); });
    if (length < 0) return SightAfterFailure();  // the process may go between the two calls
    text[length] = '\0';
    return Sight::There;
}

struct Status {
    char state;
    int parent;
    long threads;
    unsigned long long started;
};

// `name` is that of a status file of a process or thread below `folder`.
Sight ReadStatus(int folder, const char* name, Status& status) {
    char text[1024];
    const Sight sight = ReadText(folder, name, text, sizeof text);
    if (sight != Sight::There) return sight;
    const char* const bracket = std::strrchr(text, ')');
    constexpr const char* Fields =
        " %c %d %*d %*d %*d %*d %*u %*u %*u %*u %*u %*u %*u %*d %*d %*d %*d %ld %*d %llu";  // NOLINT(cert-err34-c)
    const bool isRead = bracket != nullptr && std::sscanf(bracket + 1, Fields, &status.state, &status.parent,
                                                          &status.threads, &status.started) == 4;
    return isRead ? Sight::There : Sight::Gone;
}

bool HasEnded(char state) {
    return state == 'Z' || state == 'X';
}

ProcessEntry::Activity ActivityOf(char state) {
    if (state == 'T' || state == 't') return ProcessEntry::IsStopped;
    return state == 'D' ? ProcessEntry::IsBlocked : ProcessEntry::Acts;
}

struct CloseFolder {
    void operator()(DIR* folder) const noexcept { closedir(folder); }
};
using Folder = std::unique_ptr<DIR, CloseFolder>;

// The busiest thread's.
ProcessEntry::Activity ActivityOfThreads(int pid) {
    char name[32];
    std::snprintf(name, sizeof name, "/proc/%d/task", pid);
    Descriptor descriptor = OpenWithSpares([&] { return open(name, O_RDONLY | O_DIRECTORY | O_CLOEXEC); });
    const Folder tasks(descriptor.IsOpen() ? fdopendir(descriptor.Number()) : nullptr);
    if (!tasks) return ProcessEntry::Acts;
    descriptor.Release();
    ProcessEntry::Activity activity = ProcessEntry::IsStopped;
    while (const dirent* const listed = readdir(tasks.get())) {
        char file[sizeof listed->d_name + sizeof "/stat"];
        std::snprintf(file, sizeof file, "%s/stat", listed->d_name);
        Status status;
        if (listed->d_name[0] == '.') continue;
        const Sight sight = ReadStatus(dirfd(tasks.get()), file, status);
        if (sight == Sight::Untold) return ProcessEntry::Acts;
        if (sight == Sight::There && !HasEnded(status.state)) activity = std::min(activity, ActivityOf(status.state));
    }
    return activity;
}

// Seconds since 1970 when the system started; 0 when it does not tell.
std::int64_t SystemStart() {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen("/proc/stat", "re"), std::fclose);
    char line[256];
    while (file && std::fgets(line, sizeof line, file.get()) != nullptr)
        if (std::strncmp(line, "btime ", 6) == 0) return std::strtoll(line + 6, nullptr, 10);
    return 0;
}

bool VisitAll(DIR* folder, ProcessVisit visit, void* context) {
    bool found = false, isComplete = true;
    for (errno = 0; const dirent* const listed = readdir(folder); errno = 0) {
        char* end = nullptr;
        const long pid = std::strtol(listed->d_name, &end, 10);
        if (pid <= 0 || *end != '\0') continue;
        ProcessEntry entry;
        const Sight sight = LookAtProcess(static_cast<int>(pid), entry);
        if (sight == Sight::Untold) isComplete = false;
        if (sight != Sight::There) continue;
        found = true;
        if (!entry.hasEnded) visit(entry, context);
    }
    return found && isComplete && errno == 0;
}

}  // namespace

Sight zel::LookAtProcess(int pid, ProcessEntry& entry) noexcept {
    if (pid <= 0) return Sight::Gone;
    char name[32];
    std::snprintf(name, sizeof name, "/proc/%d/stat", pid);
    Status status;
    const Sight sight = ReadStatus(AT_FDCWD, name, status);
    if (sight != Sight::There) return sight;
    entry = {{pid, static_cast<std::int64_t>(status.started) + 1}, status.parent};  // birth 0 stands for unknown
    entry.activity = ActivityOf(status.state);
    if (status.threads <= 1) {
        entry.hasEnded = HasEnded(status.state);
    } else if (HasEnded(status.state) || entry.activity == ProcessEntry::IsStopped) {
        // That was the first thread alone; the others may go on.
        entry.activity = ActivityOfThreads(pid);
    }
    return Sight::There;
}

bool zel::VisitProcesses(ProcessVisit visit, void* context) noexcept {
    const Folder folder(opendir("/proc"));
    return folder && VisitAll(folder.get(), visit, context);
}

struct ProcessWatch::State {
    Folder folder;
    SpareDescriptors spares;
    SpareDescriptors* outer = nullptr;  // of the watch that the thread had before
};

ProcessWatch::ProcessWatch() noexcept {
    std::unique_ptr<State, DeleteObject> state(ZELNew<State>());
    if (!state) {
        ReportAllocFailure("ProcessWatch", sizeof *state);
        return;
    }
    state->folder.reset(opendir("/proc"));
    if (!state->folder || !state->spares.Take(dirfd(state->folder.get()))) return;
    state->outer = std::exchange(spareDescriptors, &state->spares);
    _state = state.release();
}

ProcessWatch::~ProcessWatch() {
    if (_state != nullptr) spareDescriptors = _state->outer;
    ZELDelete(_state);
}

bool ProcessWatch::Visit(ProcessVisit visit, void* context) noexcept {
    if (_state == nullptr) return false;
    rewinddir(_state->folder.get());
    return VisitAll(_state->folder.get(), visit, context);
}

bool zel::GetStartTime(int pid, std::int64_t& seconds) noexcept {
    ProcessEntry entry;
    const std::int64_t systemStart = SystemStart();
    if (systemStart == 0 || !ReadProcess(pid, entry)) return false;
    seconds = systemStart + (entry.self.born - 1) / sysconf(_SC_CLK_TCK);
    return true;
}
