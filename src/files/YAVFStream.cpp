// A stream is a borrowed file, one of the process's standard streams, or a counted share in a file of its own. Which
// standard stream is kept as a number, since stdin and its siblings are no constants and the global objects are.
//
// Invariants: at most one of _standard, _borrowed and an own file in _shared is there; an own file that was closed is
// null for all who share it. A borrowing stream has a _shared only as room for its lines, and never gives it to a copy.
// The cost: output is what the C library makes of it. Input from an own file comes in blocks (input_block.h), input
// from a borrowed one in lines, so that the file stays in step with its other users.
// The dangerous case is a copy of a closed stream: nobody may close the file again, or use it.

#include "YAVFStream.h"

#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>
#include <utility>

#include "base/failure_report.h"
#include "base/memory.h"
#include "files/input_block.h"
#include "platform/c_streams.h"

using namespace zel;

namespace {

// Writes an insertion; without a file, nothing.
bool Put(std::FILE* file, std::string_view text) noexcept {
    errno = 0;
    return file == nullptr || WriteStream(file, text) == text.size();
}

// The text is composed first, so that an interrupted write can go on. Without memory for a long one, the C library
// writes it.
bool WriteFormatted(std::FILE* file, const char* format, std::va_list arguments) noexcept {
    char room[1024];
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(room, sizeof room, format, arguments);
    const std::size_t size = length >= 0 ? static_cast<std::size_t>(length) : 0;
    const bool isLong = size >= sizeof room;
    const std::unique_ptr<char, FreeBlock> block(isLong ? AllocateArray<char>(size + 1) : nullptr);
    bool isWritten = length >= 0;
    if (block) std::vsnprintf(block.get(), size + 1, format, again);
    if (isLong && !block)
        isWritten = std::vfprintf(file, format, again) >= 0;
    else if (isWritten)
        isWritten = WriteStream(file, {block ? block.get() : room, size}) == size;
    va_end(again);
    return isWritten;
}

}  // namespace

struct YAVFStream::Shared {
    explicit Shared(std::FILE* own) noexcept : file(own), isOwner(own != nullptr) {}
    ~Shared() {
        if (file != nullptr) CloseStream(file);
    }

    std::FILE* file;
    const bool isOwner;
    InputBlock block;  // of an own file
    LineRoom line;     // of a borrowed one
};

YAVFStream::YAVFStream(std::FILE* file) noexcept : _lastError(file != nullptr ? 0 : InvalidArgument), _borrowed(file) {}

YAVFStream::YAVFStream(const YAVFStream& other) noexcept
    : _lastError(other._lastError),
      _lostError(other._lostError),
      _standard(other._standard),
      _borrowed(other._borrowed) {
    if (other._shared && other._shared->isOwner) _shared = other._shared;
}

YAVFStream& YAVFStream::operator=(const YAVFStream& other) noexcept {
    if (this == &other) return *this;
    YAVFStream copy(other);
    std::swap(_lastError, copy._lastError);
    std::swap(_lostError, copy._lostError);
    std::swap(_standard, copy._standard);
    std::swap(_borrowed, copy._borrowed);
    std::swap(_shared, copy._shared);
    return *this;
}

// The last one closes an own file.
YAVFStream::~YAVFStream() = default;

bool YAVFStream::MakeShared(std::FILE* own) noexcept {
    _shared = ZELShared<Shared>::Make(own);
    if (!_shared) ReportAllocFailure("YAVFStream", sizeof(Shared));
    return static_cast<bool>(_shared);
}

int YAVFStream::Fail(int error) noexcept {
    _lastError = error;
    return 1;
}

int YAVFStream::Fail() noexcept {
    return Fail(errno != 0 ? errno : InvalidArgument);
}

std::FILE* YAVFStream::File() const noexcept {
    switch (_standard) {
        case Standard::Input:
            return stdin;
        case Standard::Output:
            return stdout;
        case Standard::Error:
            return stderr;
        case Standard::None:
            break;
    }
    return _borrowed != nullptr ? _borrowed : _shared ? _shared->file : nullptr;
}

int YAVFStream::_Open(const char* name, const char* mode) noexcept {
    if (name == nullptr || mode == nullptr) return Fail(InvalidArgument);
    errno = 0;
    std::FILE* const file = OpenStream(name, mode);
    if (file == nullptr) return Fail();
    _shared.reset();
    if (!MakeShared(file)) {
        std::fclose(file);
        return Fail(ENOMEM);
    }
    _standard = Standard::None;
    _borrowed = nullptr;
    _lastError = 0;
    _lostError = 0;
    return 0;
}

int YAVFStream::_Open(const char* name, const int& mode, int forInput) noexcept {
    constexpr int Text = 8, Append = 2;
    char letters[] = {forInput != 0 ? 'r' : (mode & Append) != 0 ? 'a' : 'w', (mode & Text) != 0 ? 't' : 'b', '\0'};
    return _Open(name, letters);
}

int YAVFStream::close() noexcept {
    if (_standard != Standard::None || _borrowed != nullptr) {
        _standard = Standard::None;
        _borrowed = nullptr;
        return 0;
    }
    if (File() == nullptr) return Fail(InvalidArgument);
    std::FILE* const file = std::exchange(_shared->file, nullptr);
    const bool hasLost = std::ferror(file) != 0;
    errno = 0;
    const bool isClosed = CloseStream(file);
    if (isClosed && !hasLost) return 0;
    return hasLost ? FailLost() : Fail();
}

// Output was lost. The C library remembers that, but not the error of an insertion.
int YAVFStream::FailLost() noexcept {
    if (_lostError != 0) return Fail(_lostError);
    return Fail(errno != 0 ? errno : EIO);
}

// An insertion has failed.
void YAVFStream::KeepLost() noexcept {
    if (_lostError == 0) _lostError = errno != 0 ? errno : EIO;
}

int YAVFStream::isOpen() const noexcept {
    return File() != nullptr ? 1 : 0;
}

int YAVFStream::endOfFile() const noexcept {
    std::FILE* const file = File();
    return file == nullptr || std::feof(file) != 0 || (_shared && _shared->block.AtEnd()) ? 1 : 0;
}

int YAVFStream::ReadError() const noexcept {
    std::FILE* const file = File();
    return file == nullptr || std::ferror(file) != 0 || (_shared && _shared->block.HasFailed()) ? 1 : 0;
}

YAVIFStream::~YAVIFStream() = default;

// The pieces of a line. They are read into separate variables, which the compiler keeps in registers.
struct zel::YAVLinePieces {
    // See InputBlock::Next.
    bool Next(std::size_t most, std::string_view& piece, bool& met) noexcept;
    // False without memory.
    bool MakeRoom() noexcept;
    // Always false: nothing was read from a borrowed file, at its end, after a failure, or without memory.
    bool EndOfBorrowed() noexcept;

    YAVFStream& stream;
    std::FILE* const file;  // of the stream
    const int delimiter;
};

int YAVIFStream::open(const char* name, const char* mode) noexcept {
    close();
    return _Open(name, mode);
}

int YAVIFStream::open(const char* name, const int& mode) noexcept {
    close();
    return _Open(name, mode, 1);
}

// The rare cases, apart so that Next() is small enough to be inlined: that saves 5 % of the time of a line.
bool YAVLinePieces::MakeRoom() noexcept {
    return stream.MakeShared(nullptr) || stream.Fail(ENOMEM) == 0;
}

bool YAVLinePieces::EndOfBorrowed() noexcept {
    if (std::feof(file) != 0 || std::ferror(file) != 0) return false;
    ReportAllocFailure("YAVFStream", stream._shared->line.size);
    return stream.Fail(ENOMEM) == 0;
}

inline bool YAVLinePieces::Next(std::size_t most, std::string_view& piece, bool& met) noexcept {
    met = false;
    const auto& shared = stream._shared;
    if (shared && shared->isOwner) return shared->block.Next(file, delimiter, most, piece, met);
    if (!shared && !MakeRoom()) return false;
    const std::size_t count = ReadPiece(file, delimiter, most, shared->line, met);
    piece = {shared->line.text, count - (met ? 1 : 0)};
    return count > 0 || EndOfBorrowed();
}

// What the reading of a line comes to that did not end with its delimiter; `any` tells whether it took something.
int YAVIFStream::LineResult(bool any) noexcept {
    if (ReadError() != 0) return Fail();
    return any ? 0 : 1;
}

int YAVIFStream::getline(ZELString& line, int delimiter, int skipEmpty) noexcept {
    std::FILE* const file = File();
    std::size_t length;
    do {
        line = "";
        if (file == nullptr) return Fail(InvalidArgument);
        length = 0;
        bool any = false;
        bool met = false;
        YAVLinePieces pieces = {*this, file, delimiter};
        for (std::string_view piece; !met && pieces.Next(SIZE_MAX, piece, met); any = true) {
            length += piece.size();
            if (line.Append(piece).View().size() != length) return Fail(ENOMEM);
        }
        if (!met && LineResult(any) != 0) return 1;
    } while (length == 0 && skipEmpty != 0);
    return 0;
}

int YAVIFStream::getline(char* buffer, std::size_t size, int delimiter) noexcept {
    if (buffer != nullptr) std::memset(buffer, 0, size);
    std::FILE* const file = File();
    if (file == nullptr || buffer == nullptr || size < 2) return Fail(InvalidArgument);
    std::size_t length = 0;
    bool met = false;
    YAVLinePieces pieces = {*this, file, delimiter};
    for (std::string_view piece; !met && length < size - 1 && pieces.Next(size - 1 - length, piece, met);) {
        std::memcpy(buffer + length, piece.data(), piece.size());
        length += piece.size();
    }
    return met || length == size - 1 ? 0 : LineResult(length > 0);
}

std::size_t YAVIFStream::read(char* buffer, std::size_t size) noexcept {
    std::FILE* const file = File();
    if (file == nullptr) {
        Fail(InvalidArgument);
        return 0;
    }
    const bool own = _shared && _shared->isOwner;
    ForgetEnd(file);
    if (own) _shared->block.Forget();
    _lastError = 0;
    if (buffer == nullptr) return 0;
    buffer[0] = '\0';
    errno = 0;
    const std::size_t count = own ? _shared->block.Read(file, buffer, size) : ReadStream(file, buffer, size);
    if (ReadError() != 0) Fail();
    return count;
}

YAVOFStream::~YAVOFStream() = default;

int YAVOFStream::open(const char* name, const char* mode) noexcept {
    close();
    return _Open(name, mode);
}

int YAVOFStream::open(const char* name, const int& mode) noexcept {
    close();
    return _Open(name, mode, 0);
}

// The end of every flushed operation: `done` tells whether all went to the file so far.
int YAVOFStream::Written(bool done) noexcept {
    std::FILE* const file = File();
    const bool isFlushed = done && FlushStream(file);
    if (std::ferror(file) != 0) return FailLost();
    return isFlushed ? 0 : Fail();
}

int YAVOFStream::Print(const char* format, ...) noexcept {
    std::FILE* const file = File();
    if (file == nullptr || format == nullptr) return Fail(InvalidArgument);
    errno = 0;
    std::va_list arguments;
    va_start(arguments, format);
    const bool isWritten = WriteFormatted(file, format, arguments);
    va_end(arguments);
    return Written(isWritten);
}

int YAVOFStream::Putc(int c) noexcept {
    std::FILE* const file = File();
    if (file == nullptr) return Fail(InvalidArgument);
    errno = 0;
    const char character = static_cast<char>(c);
    return Written(WriteStream(file, {&character, 1}) == 1);
}

int YAVOFStream::write(const char* data, std::size_t size) noexcept {
    std::FILE* const file = File();
    if (file == nullptr) return Fail(InvalidArgument);
    if (data == nullptr || size == 0) return 0;
    errno = 0;
    return Written(WriteStream(file, {data, size}) == size);
}

int YAVOFStream::flush() noexcept {
    if (File() == nullptr) return Fail(InvalidArgument);
    errno = 0;
    return Written(true);
}

template <class Value>
YAVOFStream& YAVOFStream::Insert(const char* format, Value value) noexcept {
    char room[64];
    const int length = std::snprintf(room, sizeof room, format, value);
    if (!Put(File(), {room, static_cast<std::size_t>(length)})) KeepLost();
    return *this;
}

YAVOFStream& YAVOFStream::operator<<(char c) noexcept {
    if (!Put(File(), {&c, 1})) KeepLost();
    return *this;
}

YAVOFStream& YAVOFStream::operator<<(unsigned char c) noexcept {
    return *this << static_cast<char>(c);
}

YAVOFStream& YAVOFStream::operator<<(int value) noexcept {
    return Insert("%d", value);
}

YAVOFStream& YAVOFStream::operator<<(unsigned int value) noexcept {
    return Insert("%u", value);
}

YAVOFStream& YAVOFStream::operator<<(long value) noexcept {
    return Insert("%ld", value);
}

YAVOFStream& YAVOFStream::operator<<(unsigned long value) noexcept {
    return Insert("%lu", value);
}

YAVOFStream& YAVOFStream::operator<<(long long value) noexcept {
    return Insert("%lld", value);
}

YAVOFStream& YAVOFStream::operator<<(unsigned long long value) noexcept {
    return Insert("%llu", value);
}

YAVOFStream& YAVOFStream::operator<<(double value) noexcept {
    return Insert("%lg", value);
}

YAVOFStream& YAVOFStream::operator<<(long double value) noexcept {
    return Insert("%Lg", value);
}

YAVOFStream& YAVOFStream::operator<<(void* pointer) noexcept {
    return Insert("0x%x", static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(pointer)));
}

YAVOFStream& YAVOFStream::operator<<(const char* text) noexcept {
    if (text != nullptr && !Put(File(), text)) KeepLost();
    return *this;
}

YAVOFStream& endl(YAVOFStream& stream) noexcept {
    stream.Putc('\n');
    return stream;
}

YAVOFStream& flush(YAVOFStream& stream) noexcept {
    stream.flush();
    return stream;
}

// Unions, so that nothing ends them.
struct zel::YAVStandardStreams {
    union Input {
        constexpr Input() noexcept : stream(YAVIFStream::Standard::Input) {}
        ~Input() {}
        YAVIFStream stream;
    };
    template <int Which>
    union Output {
        constexpr Output() noexcept : stream(YAVOFStream::Standard{Which}) {}
        ~Output() {}
        YAVOFStream stream;
    };
};

namespace {

constinit YAVStandardStreams::Input input;
constinit YAVStandardStreams::Output<1> output;
constinit YAVStandardStreams::Output<2> error;

}  // namespace

constinit YAVIFStream& YAVin = input.stream;
constinit YAVOFStream& YAVout = output.stream;
constinit YAVOFStream& YAVerr = error.stream;
