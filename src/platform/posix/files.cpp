// Streams are made from descriptors, which can be closed to children from birth.

#include "platform/files.h"

#include <fcntl.h>

#include "platform/paths.h"
#include "platform/posix/descriptor.h"

std::FILE* platform::OpenTextForWriting(const char* path, bool append) noexcept {
    const NativePath native(path);
    if (native.Text() == nullptr) return nullptr;
    const int flags = O_WRONLY | O_CREAT | O_CLOEXEC | O_NOCTTY | (append ? O_APPEND : O_TRUNC);
    Descriptor descriptor(RetryInterrupted([&] { return open(native.Text(), flags, 0666); }));
    std::FILE* const stream = descriptor.IsOpen() ? fdopen(descriptor.Number(), append ? "a" : "w") : nullptr;
    if (stream == nullptr) return nullptr;
    descriptor.Release();
    std::setvbuf(stream, nullptr, _IONBF, 0);
    return stream;
}
