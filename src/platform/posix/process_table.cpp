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

#include "platform/posix/descriptor.h"

using namespace zel;

namespace {

// Reads a small file whole, as text; false when there is none.
bool ReadText(int folder, const char* name, char* text, std::size_t size) {
    const Descriptor file(RetryInterrupted([&] { return openat(folder, name, O_RDONLY | O_CLOEXEC); }));
    if (!file.IsOpen()) return false;
    const ssize_t length = RetryInterrupted([&] { return read(file.Number(), text, size - 1); });
    if (length <= 0) return false;  // the process may go between the two calls
    text[length] = '\0';
    return true;
}

struct Status {
    char state;
    int parent;
    long threads;
    unsigned long long started;
};

// `name` is that of a status file of a process or thread below `folder`.
bool ReadStatus(int folder, const char* name, Status& status) {
    char text[1024];
    if (!ReadText(folder, name, text, sizeof text)) return false;
    const char* const bracket = std::strrchr(text, ')');
    constexpr const char* Fields =
        " %c %d %*d %*d %*d %*d %*u %*u %*u %*u %*u %*u %*u %*d %*d %*d %*d %ld %*d %llu";  // NOLINT(cert-err34-c)
    return bracket != nullptr &&
           std::sscanf(bracket + 1, Fields, &status.state, &status.parent, &status.threads, &status.started) == 4;
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

// The busiest thread's; `folder` is /proc.
ProcessEntry::Activity ActivityOfThreads(int folder, int pid) {
    char name[32];
    std::snprintf(name, sizeof name, "%d/task", pid);
    Descriptor descriptor(openat(folder, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const std::unique_ptr<DIR, CloseFolder> tasks(descriptor.IsOpen() ? fdopendir(descriptor.Number()) : nullptr);
    if (!tasks) return ProcessEntry::Acts;
    descriptor.Release();
    ProcessEntry::Activity activity = ProcessEntry::IsStopped;
    while (const dirent* const listed = readdir(tasks.get())) {
        char file[sizeof listed->d_name + sizeof "/stat"];
        std::snprintf(file, sizeof file, "%s/stat", listed->d_name);
        Status status;
        if (listed->d_name[0] == '.' || !ReadStatus(dirfd(tasks.get()), file, status)) continue;
        if (!HasEnded(status.state)) activity = std::min(activity, ActivityOf(status.state));
    }
    return activity;
}

// `folder` is /proc.
bool ReadEntry(int folder, int pid, ProcessEntry& entry) {
    char name[32];
    std::snprintf(name, sizeof name, "%d/stat", pid);
    Status status;
    if (!ReadStatus(folder, name, status)) return false;
    entry = {{pid, static_cast<std::int64_t>(status.started) + 1}, status.parent};  // birth 0 stands for unknown
    entry.activity = ActivityOf(status.state);
    if (status.threads <= 1) {
        entry.hasEnded = HasEnded(status.state);
    } else if (HasEnded(status.state) || entry.activity == ProcessEntry::IsStopped) {
        // That was the first thread alone; the others may go on.
        entry.activity = ActivityOfThreads(folder, pid);
    }
    return true;
}

// Seconds since 1970 when the system started; 0 when it does not tell.
std::int64_t SystemStart() {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen("/proc/stat", "re"), std::fclose);
    char line[256];
    while (file && std::fgets(line, sizeof line, file.get()) != nullptr)
        if (std::strncmp(line, "btime ", 6) == 0) return std::strtoll(line + 6, nullptr, 10);
    return 0;
}

}  // namespace

bool zel::ReadProcess(int pid, ProcessEntry& entry) noexcept {
    if (pid <= 0) return false;
    const Descriptor folder(RetryInterrupted([] { return open("/proc", O_PATH | O_DIRECTORY | O_CLOEXEC); }));
    return folder.IsOpen() && ReadEntry(folder.Number(), pid, entry);
}

bool zel::VisitProcesses(void (*visit)(const ProcessEntry& entry, void* context), void* context) noexcept {
    const std::unique_ptr<DIR, CloseFolder> folder(opendir("/proc"));
    if (!folder) return false;
    bool found = false;
    while (const dirent* const listed = readdir(folder.get())) {
        char* end = nullptr;
        const long pid = std::strtol(listed->d_name, &end, 10);
        ProcessEntry entry;
        if (pid <= 0 || *end != '\0' || !ReadEntry(dirfd(folder.get()), static_cast<int>(pid), entry)) continue;
        found = true;
        if (!entry.hasEnded) visit(entry, context);
    }
    return found;
}

bool zel::GetStartTime(int pid, std::int64_t& seconds) noexcept {
    ProcessEntry entry;
    const std::int64_t systemStart = SystemStart();
    if (systemStart == 0 || !ReadProcess(pid, entry)) return false;
    seconds = systemStart + (entry.self.born - 1) / sysconf(_SC_CLK_TCK);
    return true;
}
