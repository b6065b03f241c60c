// Children get an array of pointers of their own, so that nothing has to be set in the caller's environment and taken
// back while others read it.
//
// The dangerous case is the caller's own RemoteKill=NO: setenv may give the array back to the heap while another thread
// looks through it. Here an array that was ever published stays for ever; a variable that exists is exchanged in its
// slot, and a new one goes into a spare slot, behind which the end was written first. At most one array is made for
// each time that somebody else replaces the whole environment.

#include "platform/posix/child_environment.h"

#include <unistd.h>

#include <atomic>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <mutex>

#include "base/failure_report.h"
#include "base/memory.h"
#include "platform/process_launch.h"

using namespace zel;

namespace {

constexpr char Name[] = "RemoteKill=";
char ownMark[] = "RemoteKill=NO";

bool IsRemoteKill(const char* text) {
    return std::strncmp(text, Name, sizeof Name - 1) == 0;
}

char** Environment() {
    return std::atomic_ref<char**>(environ).load(std::memory_order_acquire);
}

char* Load(char*& slot) {
    return std::atomic_ref<char*>(slot).load(std::memory_order_acquire);
}

void Store(char*& slot, char* text) {
    std::atomic_ref<char*>(slot).store(text, std::memory_order_release);
}

std::size_t Count(char** texts) {
    std::size_t count = 0;
    while (texts != nullptr && Load(texts[count]) != nullptr) ++count;
    return count;
}

// An environment with room, published once and kept. The first slot leads to the one before it.
char** published = nullptr;
std::size_t publishedRoom = 0;

void AddMark(char** texts, std::size_t count) {
    if (texts == published && count < publishedRoom) {
        Store(texts[count + 1], nullptr);
        Store(texts[count], ownMark);
        return;
    }
    constexpr std::size_t Spare = 16;
    const std::size_t size = (1 + count + Spare + 1) * sizeof(char*);
    char** const block = static_cast<char**>(Allocate(size));
    if (block == nullptr) return ReportAllocFailure("ResetRemoteKill", size);
    block[0] = reinterpret_cast<char*>(published);
    char** const copy = block + 1;
    for (std::size_t i = 0; i < count; ++i) copy[i] = Load(texts[i]);
    copy[count] = ownMark;
    copy[count + 1] = nullptr;
    published = copy;
    publishedRoom = count + Spare;
    std::atomic_ref<char**>(environ).store(copy, std::memory_order_release);
}

}  // namespace

ChildEnvironment::ChildEnvironment() noexcept {
    std::snprintf(_remoteKill, sizeof _remoteKill, "%s%d", Name, static_cast<int>(getpid()));
    char** const own = Environment();
    const std::size_t count = Count(own);
    const std::size_t size = (count + 2) * sizeof(char*);
    _texts = static_cast<char**>(Allocate(size));
    if (_texts == nullptr) {
        ReportAllocFailure("ChildEnvironment", size);
        return;
    }
    char** out = _texts;
    for (std::size_t i = 0; i < count; ++i) {
        char* const text = Load(own[i]);
        if (text == nullptr) break;
        if (!IsRemoteKill(text)) *out++ = text;
    }
    *out++ = _remoteKill;
    *out = nullptr;
}

ChildEnvironment::~ChildEnvironment() {
    Free(_texts);
}

void zel::ResetRemoteKill() noexcept {
    static std::mutex one;
    const std::lock_guard guard(one);
    char** const own = Environment();
    std::size_t count = 0;
    for (; own != nullptr; ++count) {
        char* const text = Load(own[count]);
        if (text == nullptr) break;
        if (!IsRemoteKill(text)) continue;
        if (std::strcmp(text, ownMark) != 0) Store(own[count], ownMark);
        return;
    }
    AddMark(own, count);
}
