#include "support/soak_system.h"

#include <malloc.h>
#include <signal.h>
#include <unistd.h>

#include <cctype>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "support/test_system.h"

namespace {

namespace fs = std::filesystem;

// Not through a stream: a child that is launched meanwhile would get its descriptor.
std::string ReadText(const std::string& path) {
    std::FILE* const file = std::fopen(path.c_str(), "re");
    if (file == nullptr) return {};
    char text[4096];
    const std::size_t count = std::fread(text, 1, sizeof text, file);
    std::fclose(file);
    return std::string(text, count);
}

long CountEntries(const std::string& folder, const std::string& mark) {
    long count = 0;
    std::error_code missing;
    for (const auto& entry : fs::directory_iterator(folder, missing))
        if (entry.path().filename().string().find(mark) != std::string::npos) ++count;
    return count;
}

template <class Use>
void ForEachProcess(Use use) {
    std::error_code missing;
    for (const auto& entry : fs::directory_iterator("/proc", missing))
        if (const std::string name = entry.path().filename(); std::isdigit(static_cast<unsigned char>(name[0])))
            use(std::stoi(name));
}

}  // namespace

Resources ReadResources(const std::string& mark) {
    malloc_trim(0);
    Resources found;
    found.descriptors = CountEntries("/proc/self/fd", "") - 1;  // without the one that counts
    found.heap = static_cast<long>(AllocatedBytes() / 1024);
    std::istringstream status(ReadText("/proc/self/status"));
    for (std::string word; status >> word;) {
        if (word == "VmRSS:") status >> found.resident;
        if (word == "Threads:") status >> found.threads;
    }
    found.children = found.zombies = 0;
    ForEachProcess([&](int pid) {
        const std::string text = ReadText("/proc/" + std::to_string(pid) + "/stat");
        char state = 0;
        int parent = 0;
        const auto name = text.rfind(')');
        if (name == std::string::npos || std::sscanf(text.c_str() + name, ") %c %d", &state, &parent) != 2) return;
        if (parent == getpid()) ++(state == 'Z' ? found.zombies : found.children);
    });
    found.sharedFiles = CountEntries("/dev/shm", mark);
    return found;
}

void UseOneHeap() {
    mallopt(M_ARENA_MAX, 1);
}

std::vector<int> MarkedProcesses(const std::string& mark) {
    std::vector<int> found;
    ForEachProcess([&](int pid) {
        if (pid != getpid() && ReadText("/proc/" + std::to_string(pid) + "/cmdline").find(mark) != std::string::npos)
            found.push_back(pid);
    });
    return found;
}

void EndMarkedProcesses(const std::string& mark) {
    for (const int how : {SIGSTOP, SIGKILL})
        for (const int pid : MarkedProcesses(mark)) kill(pid, how);
}

void BecomeMember(unsigned traits, int group) {
    alarm(120);  // nothing of a soak that was broken off stays for ever
    if (group != 0) setpgid(0, group);
    if ((traits & OwnSession) != 0) setsid();
    if ((traits & OwnGroup) != 0) setpgid(0, 0);
    if ((traits & DeafToHangup) != 0) signal(SIGHUP, SIG_IGN);
}

void ActAsMember(unsigned traits, const std::vector<int>& children) {
    static const int parent = getppid();
    static int bred = 0;
    if ((traits & Continues) != 0) {
        for (const int child : children) kill(child, SIGCONT);
        if (getppid() == parent) kill(parent, SIGCONT);
    }
    if ((traits & Breeds) != 0 && bred++ < 8 && fork() == 0) {
        fork();
        alarm(120);
        for (;;) pause();
    }
    if ((traits & Stops) != 0) raise(SIGSTOP);
}

bool SetNextProcessId(int pid) {
    return static_cast<bool>(std::ofstream("/proc/sys/kernel/ns_last_pid") << pid - 1 << std::flush);
}

std::string InOwnNameSpace(const std::string& command) {
    const std::string user = geteuid() != 0 ? "--user --map-root-user " : "";
    return "unshare " + user + "--pid --fork --mount-proc --kill-child " + command;
}
