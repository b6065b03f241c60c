// Streams are made from the C runtime's descriptors, which can be closed to children from birth. The runtime knows no
// way to take a line of any length, so all bytes come one by one, under one lock.

#include "platform/c_streams.h"

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>

#include "platform/native_path.h"
#include "platform/read_bytes.h"

using namespace zel;

namespace {

// The flags of _open that a mode of fopen stands for; -1 for a mode that is none.
int OpenFlags(const char* mode) noexcept {
    int flags = 0;
    switch (mode[0]) {
        case 'r':
            break;
        case 'w':
            flags = _O_CREAT | _O_TRUNC;
            break;
        case 'a':
            flags = _O_CREAT | _O_APPEND;
            break;
        default:
            return -1;
    }
    flags |= std::strchr(mode, '+') != nullptr ? _O_RDWR : mode[0] == 'r' ? _O_RDONLY : _O_WRONLY;
    if (std::strchr(mode, 'x') != nullptr) flags |= _O_EXCL;
    return flags | (std::strchr(mode, 'b') != nullptr ? _O_BINARY : _O_TEXT) | _O_NOINHERIT;
}

}  // namespace

std::FILE* zel::OpenStream(const char* path, const char* mode) noexcept {
    const NativePath native(path);
    const int flags = OpenFlags(mode);
    if (native.Text() == nullptr || flags < 0) {
        errno = native.Text() == nullptr ? ENOMEM : EINVAL;
        return nullptr;
    }
    const int descriptor = _open(native.Text(), flags, _S_IREAD | _S_IWRITE);
    if (descriptor < 0) return nullptr;
    std::FILE* const stream = _fdopen(descriptor, mode);
    if (stream == nullptr) _close(descriptor);
    return stream;
}

std::ptrdiff_t zel::ReadArrived(std::FILE* stream, char* bytes, std::size_t size) noexcept {
    return _read(_fileno(stream), bytes, static_cast<unsigned>(size));
}

// No signal interrupts a call here.
std::size_t zel::ReadStream(std::FILE* stream, char* bytes, std::size_t size) noexcept {
    return std::fread(bytes, 1, size, stream);
}

std::size_t zel::WriteStream(std::FILE* stream, std::string_view bytes) noexcept {
    return std::fwrite(bytes.data(), 1, bytes.size(), stream);
}

bool zel::FlushStream(std::FILE* stream) noexcept {
    return std::fflush(stream) == 0;
}

bool zel::CloseStream(std::FILE* stream) noexcept {
    return std::fclose(stream) == 0;
}

bool zel::WritePieces(std::FILE* stream, const std::string_view* pieces, int count) noexcept {
    for (int i = 0; i < count; ++i)
        if (std::fwrite(pieces[i].data(), 1, pieces[i].size(), stream) != pieces[i].size()) return false;
    return std::fflush(stream) == 0;
}

void zel::ForgetEnd(std::FILE* stream) noexcept {
    std::clearerr(stream);
    // In text mode the descriptor keeps an end in mind as well, until it is moved.
    _lseeki64(_fileno(stream), 0, SEEK_CUR);
}

std::size_t zel::ReadPiece(std::FILE* stream, int delimiter, std::size_t most, LineRoom& room, bool& met) noexcept {
    _lock_file(stream);
    const std::size_t read = ReadBytes([=] { return _getc_nolock(stream); }, delimiter, most, room, met);
    _unlock_file(stream);
    return read;
}
