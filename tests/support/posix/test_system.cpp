#include "support/test_system.h"

#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

namespace {

// Between fork and exec: only calls that are safe there.
[[noreturn]] void BecomeProgram(const char* path, char* const* arguments, const char* outPath, const char* errPath) {
    const bool closed = ClosedStream == outPath;
    const int out = closed ? open("/dev/null", O_WRONLY) : open(outPath, O_WRONLY | O_CREAT | O_TRUNC, 0600);
    const int err = open(errPath, O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (dup2(out, 1) == 1 && dup2(err, 2) == 2) {
        close(out);
        close(err);
        if (closed) close(1);
        execv(path, arguments);
    }
    _exit(127);
}

void SetInterruptions(void (*handler)(int), int microseconds) {
    struct sigaction action = {};
    action.sa_handler = handler;
    sigaction(SIGALRM, &action, nullptr);
    const itimerval interval = {{0, microseconds}, {0, microseconds}};
    setitimer(ITIMER_REAL, &interval, nullptr);
}

}  // namespace

int RunAndWait(const std::string& name, const std::vector<std::string>& arguments, const std::string& outPath,
               const std::string& errPath) {
    const std::string path = std::filesystem::read_symlink("/proc/self/exe").parent_path() / name;
    std::vector<char*> texts = {const_cast<char*>(path.c_str())};
    for (const std::string& argument : arguments) texts.push_back(const_cast<char*>(argument.c_str()));
    texts.push_back(nullptr);
    const pid_t child = fork();
    if (child < 0) return -1;
    if (child == 0) BecomeProgram(path.c_str(), texts.data(), outPath.c_str(), errPath.c_str());
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

std::string FullDevice() {
    return "/dev/full";
}

std::string EndlessDevice() {
    return "/dev/zero";
}

bool MakeNamedPipe(const std::string& path) {
    return mkfifo(path.c_str(), 0600) == 0;
}

int MakeDeepTree(const std::string& path, int levels) {
    int folder = open(path.c_str(), O_PATH | O_DIRECTORY);
    int made = 0;
    for (; folder >= 0 && made < levels; ++made) {
        close(openat(folder, "f", O_WRONLY | O_CREAT, 0400));
        if (mkdirat(folder, "d", 0700) != 0) break;
        const int below = openat(folder, "d", O_PATH | O_DIRECTORY);
        close(folder);
        folder = below;
    }
    close(folder);
    return made;
}

void RunConfined(const std::function<void()>& work) {
    rlimit before;
    getrlimit(RLIMIT_NOFILE, &before);
    const rlimit confined = {64, before.rlim_max};
    setrlimit(RLIMIT_NOFILE, &confined);
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, std::size_t{256} << 10);
    pthread_t thread;
    const auto run = [](void* task) -> void* {
        (*static_cast<const std::function<void()>*>(task))();
        return nullptr;
    };
    if (pthread_create(&thread, &attributes, run, const_cast<std::function<void()>*>(&work)) == 0)
        pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
    setrlimit(RLIMIT_NOFILE, &before);
}

OrdinaryUser::OrdinaryUser() : _ordinary(geteuid() != 0 || seteuid(65534) == 0) {}

OrdinaryUser::~OrdinaryUser() {
    if (getuid() == 0 && seteuid(0) != 0) _exit(126);
}

Interruptions::Interruptions() {
    SetInterruptions([](int) {}, 1000);
}

Interruptions::~Interruptions() {
    SetInterruptions(SIG_IGN, 0);
}
