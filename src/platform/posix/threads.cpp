#include "platform/threads.h"

#include <pthread.h>
#include <unistd.h>

#include <cstring>

namespace platform {

unsigned int CurrentThreadId() noexcept {
    return static_cast<unsigned int>(gettid());
}

void NameCurrentThread(const char* name) noexcept {
    char shortName[16] = {};  // the kernel takes 15 bytes and refuses longer names
    std::strncpy(shortName, name, sizeof shortName - 1);
    pthread_setname_np(pthread_self(), shortName);
}

}  // namespace platform
