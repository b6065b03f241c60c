// Streams are made from the C runtime's descriptors, which can be closed to children from birth.

#include "platform/text_reader.h"

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include "platform/native_path.h"

using namespace zel;

std::FILE* zel::OpenTextForWriting(const char* path, bool append) noexcept {
    const NativePath native(path);
    if (native.Text() == nullptr) return nullptr;
    const int flags = _O_WRONLY | _O_CREAT | _O_TEXT | _O_NOINHERIT | (append ? _O_APPEND : _O_TRUNC);
    const int descriptor = _open(native.Text(), flags, _S_IREAD | _S_IWRITE);
    if (descriptor < 0) return nullptr;
    std::FILE* const stream = _fdopen(descriptor, append ? "a" : "w");
    if (stream == nullptr) {
        _close(descriptor);
        return nullptr;
    }
    std::setvbuf(stream, nullptr, _IONBF, 0);
    return stream;
}

bool TextReader::Open(const char* path) noexcept {
    Close();
    const NativePath native(path);
    if (native.Text() != nullptr) _descriptor = _open(native.Text(), _O_RDONLY | _O_TEXT | _O_NOINHERIT);
    _size = _descriptor >= 0 ? _filelengthi64(_descriptor) : 0;
    return _descriptor >= 0;
}

void TextReader::Close() noexcept {
    if (_descriptor >= 0) _close(_descriptor);
    _descriptor = -1;
}

std::ptrdiff_t TextReader::Read(char* bytes, std::size_t size) noexcept {
    return _descriptor >= 0 ? _read(_descriptor, bytes, static_cast<unsigned>(size)) : -1;
}
