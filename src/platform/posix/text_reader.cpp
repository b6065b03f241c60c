// Streams are made from descriptors, which can be closed to children from birth.

#include "platform/text_reader.h"

#include <fcntl.h>
#include <sys/stat.h>

#include "platform/native_path.h"
#include "platform/posix/descriptor.h"

using namespace zel;

std::FILE* zel::OpenTextForWriting(const char* path, bool append) noexcept {
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

bool TextReader::Open(const char* path) noexcept {
    Close();
    const NativePath native(path);
    if (native.Text() == nullptr) return false;
    Descriptor file(RetryInterrupted([&] { return open(native.Text(), O_RDONLY | O_CLOEXEC | O_NOCTTY); }));
    struct stat status;
    // A directory opens here like a file.
    if (!file.IsOpen() || fstat(file.Number(), &status) != 0 || S_ISDIR(status.st_mode)) return false;
    _descriptor = file.Release();
    _size = status.st_size;
    return true;
}

void TextReader::Close() noexcept {
    Descriptor(std::exchange(_descriptor, -1)).Close();
}

std::ptrdiff_t TextReader::Read(char* bytes, std::size_t size) noexcept {
    return RetryInterrupted([&] { return read(_descriptor, bytes, size); });
}
