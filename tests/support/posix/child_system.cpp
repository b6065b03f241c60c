#include "support/child_system.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <time.h>
#include <unistd.h>

void MakeStreamsBinary() {}

void DieBySignal(int number) {
    signal(number, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    raise(number);
    _exit(126);
}

bool AwaitPoliteRequest(bool ignore, int milliseconds, void (*ready)()) {
    const timespec limit = {milliseconds / 1000, milliseconds % 1000 * 1000000L};
    if (ignore) {
        signal(SIGTERM, SIG_IGN);
        ready();
        nanosleep(&limit, nullptr);
        return false;
    }
    sigset_t polite;
    sigemptyset(&polite);
    sigaddset(&polite, SIGTERM);
    sigprocmask(SIG_BLOCK, &polite, nullptr);
    ready();
    return sigtimedwait(&polite, nullptr, &limit) == SIGTERM;
}

bool StartAgain(const std::vector<std::string>& arguments) {
    std::vector<char*> texts;
    for (const std::string& argument : arguments) texts.push_back(const_cast<char*>(argument.c_str()));
    texts.insert(texts.begin(), const_cast<char*>("child"));
    texts.push_back(nullptr);
    pid_t child;
    return posix_spawn(&child, "/proc/self/exe", nullptr, nullptr, texts.data(), environ) == 0;
}

int OwnProcessId() {
    return getpid();
}

std::vector<long> OpenDescriptors() {
    std::vector<long> open;
    const long limit = sysconf(_SC_OPEN_MAX);
    for (int descriptor = 0; descriptor < limit && descriptor < 65536; ++descriptor)
        if (fcntl(descriptor, F_GETFD) >= 0) open.push_back(descriptor);
    return open;
}
