// Threads by the C library's own calls. A new thread gets its function in a block, which it frees.

#include "platform/threads.h"

#include <dlfcn.h>
#include <pthread.h>
#include <unistd.h>

#include <cstring>

#include "base/failure_report.h"
#include "base/memory.h"

using namespace zel;

namespace {

struct Call {
    void (*body)(void* argument);
    void* argument;
};

void* MakeCall(void* made) {
    const Call call = *static_cast<Call*>(made);
    ZELDelete(static_cast<Call*>(made));
    call.body(call.argument);
    return nullptr;
}

}  // namespace

unsigned int zel::CurrentThreadId() noexcept {
    return static_cast<unsigned int>(gettid());
}

void zel::NameCurrentThread(const char* name) noexcept {
    char shortName[16] = {};  // the kernel takes 15 bytes and refuses longer names
    std::strncpy(shortName, name, sizeof shortName - 1);
    pthread_setname_np(pthread_self(), shortName);
}

bool zel::StartThread(void (*body)(void* argument), void* argument) noexcept {
    auto* const call = ZELNew<Call>(body, argument);
    if (call == nullptr) {
        ReportAllocFailure("StartThread", sizeof(Call));
        return false;
    }
    pthread_attr_t detached;
    pthread_attr_init(&detached);
    pthread_attr_setdetachstate(&detached, PTHREAD_CREATE_DETACHED);
    pthread_t thread;
    const bool started = pthread_create(&thread, &detached, MakeCall, call) == 0;
    pthread_attr_destroy(&detached);
    if (!started) ZELDelete(call);
    return started;
}

void zel::KeepLibraryLoaded() noexcept {
    static const bool kept = [] {
        Dl_info library;
        if (dladdr(reinterpret_cast<void*>(&MakeCall), &library) == 0) return false;
        void* const handle = dlopen(library.dli_fname, RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
        if (handle != nullptr) dlclose(handle);  // the mark stays
        return handle != nullptr;
    }();
    static_cast<void>(kept);
}
