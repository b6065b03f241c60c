// What /proc tells. Numbers are read behind the last bracket of a process's line, since its name, which stands in
// brackets in front of them, may hold anything.

#include "platform/process_table.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "platform/posix/descriptor.h"

namespace {

using platform::ProcessEntry;

// Reads a small file whole, as text; false when there is none.
bool ReadText(int folder, const char* name, char* text, std::size_t size) {
    const platform::Descriptor file(
        platform::RetryInterrupted([&] { return openat(folder, name, O_RDONLY | O_CLOEXEC); }));
    if (!file.IsOpen()) return false;
    const ssize_t length = platform::RetryInterrupted([&] { return read(file.Number(), text, size - 1); });
    if (length <= 0) return false;  // the process may go between the two calls
    text[length] = '\0';
    return true;
}

bool ParseStatus(const char* text, ProcessEntry& entry) {
    const char* const bracket = std::strrchr(text, ')');
    if (bracket == nullptr) return false;
    char state = 0;
    int parent = 0;
    long threads = 0;
    unsigned long long started = 0;
    constexpr const char* Fields =
        " %c %d %*d %*d %*d %*d %*u %*u %*u %*u %*u %*u %*u %*d %*d %*d %*d %ld %*d %llu";  // NOLINT(cert-err34-c)
    if (std::sscanf(bracket + 1, Fields, &state, &parent, &threads, &started) != 4) return false;
    entry.parent = parent;
    entry.self.born = static_cast<std::int64_t>(started) + 1;  // 0 stands for unknown
    // Other threads go on when the first one of a process has ended.
    if (state == 'D') entry.activity = ProcessEntry::IsBlocked;
    if (state == 'T' || state == 't') entry.activity = ProcessEntry::IsStopped;
    entry.hasEnded = (state == 'Z' || state == 'X') && threads <= 1;
    return true;
}

// `folder` is /proc.
bool ReadEntry(int folder, int pid, ProcessEntry& entry) {
    char name[32];
    std::snprintf(name, sizeof name, "%d/stat", pid);
    char text[1024];
    ProcessEntry found = {{pid, 0}};
    if (!ReadText(folder, name, text, sizeof text) || !ParseStatus(text, found)) return false;
    entry = found;
    return true;
}

struct CloseFolder {
    void operator()(DIR* folder) const noexcept { closedir(folder); }
};

// Seconds since 1970 when the system started; 0 when it does not tell.
std::int64_t SystemStart() {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen("/proc/stat", "re"), std::fclose);
    char line[256];
    while (file && std::fgets(line, sizeof line, file.get()) != nullptr)
        if (std::strncmp(line, "btime ", 6) == 0) return std::strtoll(line + 6, nullptr, 10);
    return 0;
}

}  // namespace

namespace platform {

bool ReadProcess(int pid, ProcessEntry& entry) noexcept {
    if (pid <= 0) return false;
    const Descriptor folder(RetryInterrupted([] { return open("/proc", O_PATH | O_DIRECTORY | O_CLOEXEC); }));
    return folder.IsOpen() && ReadEntry(folder.Number(), pid, entry);
}

bool VisitProcesses(void (*visit)(const ProcessEntry& entry, void* context), void* context) noexcept {
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

bool GetStartTime(int pid, std::int64_t& seconds) noexcept {
    ProcessEntry entry;
    const std::int64_t systemStart = SystemStart();
    if (systemStart == 0 || !ReadProcess(pid, entry)) return false;
    seconds = systemStart + (entry.self.born - 1) / sysconf(_SC_CLK_TCK);
    return true;
}

}  // namespace platform
