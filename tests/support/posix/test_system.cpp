#include "support/test_system.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <malloc.h>
#include <pthread.h>
#include <signal.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

const std::string FullDevice = "/dev/full";
const std::string UnreadableFile = "/proc/self/mem";
const std::string EndlessDevice = "/dev/zero";
const int StormPercent = 100;

std::string ProgramPath(const std::string& name) {
    return std::filesystem::read_symlink("/proc/self/exe").parent_path() / name;
}

bool CanAskPrograms() {
    return true;
}

IgnoredChildren::IgnoredChildren() : isIgnoring(true) {
    signal(SIGCHLD, SIG_IGN);
}

IgnoredChildren::~IgnoredChildren() {
    signal(SIGCHLD, SIG_DFL);
}

int RunAndWait(const std::string& name, const std::vector<std::string>& arguments, const std::string& outPath,
               const std::string& errPath) {
    const std::string path = ProgramPath(name);
    std::vector<char*> texts = {const_cast<char*>(path.c_str())};
    for (const std::string& argument : arguments) texts.push_back(const_cast<char*>(argument.c_str()));
    texts.push_back(nullptr);
    constexpr int Flags = O_WRONLY | O_CREAT | O_TRUNC;
    posix_spawn_file_actions_t streams;
    posix_spawn_file_actions_init(&streams);
    if (outPath == ClosedStream)
        posix_spawn_file_actions_addclose(&streams, 1);
    else
        posix_spawn_file_actions_addopen(&streams, 1, outPath.c_str(), Flags, 0600);
    posix_spawn_file_actions_addopen(&streams, 2, errPath.c_str(), Flags, 0600);
    pid_t child;
    const int refused = posix_spawn(&child, path.c_str(), &streams, nullptr, texts.data(), environ);
    posix_spawn_file_actions_destroy(&streams);
    if (refused) return -1;
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

bool MakeNamedPipe(const std::string& path) {
    return mkfifo(path.c_str(), 0600) == 0;
}

bool StaysLoaded(const std::string& name, const char* function, const std::function<void*(void*)>& use) {
    void* const library = dlopen((ProgramPath(name) + ".so").c_str(), RTLD_NOW);
    const void* const code = use(dlsym(library, function));
    dlclose(library);
    Dl_info found;
    return dladdr(code, &found) != 0;
}

std::vector<long> InheritedDescriptors() {
    std::vector<long> found;
    for (int descriptor = 0; descriptor < 1024; ++descriptor)
        if (fcntl(descriptor, F_GETFD) == 0) found.push_back(descriptor);  // neither closed nor FD_CLOEXEC
    return found;
}

static std::size_t EntriesOf(const char* folder) {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder), {}));
}
std::size_t OpenDescriptors() {
    return EntriesOf("/proc/self/fd");
}
std::size_t RunningThreads() {
    return EntriesOf("/proc/self/task");
}

std::size_t AllocatedBytes() {
    const auto told = mallinfo2();
    return told.uordblks + told.hblkhd;
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

std::string OutputOfFork(const std::function<std::string()>& work) {
    int ends[2];
    if (pipe(ends) != 0) return {};
    const pid_t child = fork();
    if (child == 0) {
        const std::string text = work();  // shorter than a pipe is deep
        _exit(write(ends[1], text.data(), text.size()) == static_cast<ssize_t>(text.size()) ? 0 : 1);
    }
    close(ends[1]);
    char text[4096];
    const ssize_t count = child > 0 && waitpid(child, nullptr, 0) == child ? read(ends[0], text, sizeof text) : 0;
    close(ends[0]);
    return std::string(text, count > 0 ? static_cast<std::size_t>(count) : 0);
}

Interruptions::Interruptions() {
    struct sigaction action = {};  // without SA_RESTART
    action.sa_handler = [](int) {};
    sigaction(SIGALRM, &action, nullptr);
    ualarm(1000, 1000);
}

Interruptions::~Interruptions() {
    ualarm(0, 0);
}

std::FILE* OpenInterrupted(std::string& arrived, int number) {
    struct Sink {
        std::string& arrived;
        int left;
    };
    cookie_io_functions_t functions = {};
    functions.write = [](void* to, const char* bytes, std::size_t size) -> ssize_t {
        Sink& sink = *static_cast<Sink*>(to);
        if (--sink.left == 0) return errno = EINTR, 0;
        sink.arrived.append(bytes, size);
        return static_cast<ssize_t>(size);
    };
    functions.close = [](void* to) { return delete static_cast<Sink*>(to), 0; };
    std::FILE* const stream = fopencookie(new Sink{arrived, number}, "w", functions);
    std::setvbuf(stream, nullptr, _IOFBF, 100);
    return stream;
}
