// Whole lines come by getdelim, which looks for the delimiter in the stream's buffer; everything else byte by byte, as
// that is the only way that takes no more than is wanted.

#include "platform/c_streams.h"

#include <sys/stat.h>
#include <sys/uio.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstring>

#include "platform/native_path.h"
#include "platform/posix/descriptor.h"
#include "platform/read_bytes.h"

using namespace zel;

std::FILE* zel::OpenStream(const char* path, const char* mode) noexcept {
    const NativePath native(path);
    char closedToChildren[32];
    const std::size_t length = std::strlen(mode);
    if (native.Text() == nullptr || length == 0 || length + 2 > sizeof closedToChildren) {
        errno = native.Text() == nullptr ? ENOMEM : EINVAL;
        return nullptr;
    }
    closedToChildren[0] = mode[0];
    closedToChildren[1] = 'e';
    std::memcpy(closedToChildren + 2, mode + 1, length);
    std::FILE* const stream = std::fopen(native.Text(), closedToChildren);
    struct stat status;
    // A directory opens here like a file.
    if (stream == nullptr || fstat(fileno(stream), &status) != 0 || !S_ISDIR(status.st_mode)) return stream;
    std::fclose(stream);
    errno = EISDIR;
    return nullptr;
}

std::ptrdiff_t zel::ReadArrived(std::FILE* stream, char* bytes, std::size_t size) noexcept {
    return RetryInterrupted([&] { return read(fileno(stream), bytes, size); });
}

bool zel::WritePieces(std::FILE* stream, const std::string_view* pieces, int count) noexcept {
    if (std::fflush(stream) != 0) return false;
    iovec parts[MostPieces];
    std::size_t wanted = 0;
    for (int i = 0; i < count; ++i) {
        parts[i] = {const_cast<char*>(pieces[i].data()), pieces[i].size()};
        wanted += pieces[i].size();
    }
    if (wanted == 0) return true;
    const ssize_t written = RetryInterrupted([&] { return writev(fileno(stream), parts, count); });
    if (written < 0) return false;
    // Less, when a signal or a disk that fills up came between: the rest goes by itself.
    auto done = static_cast<std::size_t>(written);
    if (done == wanted) return true;
    for (int i = 0; i < count; ++i) {
        const std::string_view rest = pieces[i].substr(std::min(done, pieces[i].size()));
        if (std::fwrite(rest.data(), 1, rest.size(), stream) != rest.size()) return false;
        done -= pieces[i].size() - rest.size();
    }
    return std::fflush(stream) == 0;
}

void zel::ForgetEnd(std::FILE* stream) noexcept {
    std::clearerr(stream);
}

std::size_t zel::ReadPiece(std::FILE* stream, int delimiter, std::size_t most, LineRoom& room, bool& met) noexcept {
    if (most != SIZE_MAX || delimiter < 0 || delimiter > UCHAR_MAX) {
        flockfile(stream);
        const std::size_t read = ReadBytes([=] { return getc_unlocked(stream); }, delimiter, most, room, met);
        funlockfile(stream);
        return read;
    }
    const ssize_t count = getdelim(&room.text, &room.size, delimiter, stream);
    met = count > 0 && room.text[count - 1] == static_cast<char>(delimiter);
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}
