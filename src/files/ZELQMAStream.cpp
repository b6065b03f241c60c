// Lines lie in one buffer. Each byte of it is looked at once: a step finds the line feeds of the next 64 bytes as the
// bits of a word, which is kept between calls, so most calls take one bit and touch nothing but the byte that becomes a
// NUL. What is left of a line when the buffer is used up moves to its front, just before a multiple of 64, so that
// reading and looking begin on a boundary.
//
// Invariants: _begin <= _scanned <= _end <= capacity; the line feeds between _begin and _scanned are exactly the bits
// of _lineFeeds, counted from _base; 64 bytes behind the data may be read.
// The dangerous case is a line as long as the buffer: it is doubled, but only when it is at least half full, so memory
// follows what arrived.

#include "ZELQMAStream.h"

#include <bit>
#include <cstdint>
#include <cstring>
#include <utility>

#include "base/bytes16.h"
#include "base/failure_report.h"
#include "base/growing_array.h"
#include "platform/c_streams.h"

using namespace zel;

namespace {

constexpr std::size_t Step = 64;
constexpr std::size_t FirstCapacity = 64000;

// The bits of the line feeds among the 64 bytes at `place`.
std::uint64_t FindLineFeeds(const char* place) noexcept {
    const Bytes16 lineFeed = RepeatByte('\n');
    std::uint64_t found = 0;
    for (std::size_t part = 0; part < Step; part += Bytes16::Size)
        found |= std::uint64_t{ByteMask(EqualBytes(LoadBytes(place + part), lineFeed))} << part;
    return found;
}

}  // namespace

class ZELQMAStream::Reader {
public:
    Reader() = default;
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;
    ~Reader() { Free(_buffer); }

    std::FILE* Open(const char* name, const char* mode) noexcept;
    int Close() noexcept;
    char* NextLine() noexcept;
    bool HasFailed() const noexcept { return _file == nullptr || _hasFailed; }

private:
    bool Fill() noexcept;
    bool MoveRest() noexcept;
    void Scan() noexcept;

    std::FILE* _file = nullptr;  // the caller's
    bool _atEnd = false;
    bool _hasFailed = false;
    char* _buffer = nullptr;
    std::size_t _room = 0;      // bytes of the block
    std::size_t _capacity = 0;  // for data: one step less
    std::size_t _begin = 0;     // of the next line
    std::size_t _end = 0;       // of the data
    std::size_t _scanned = 0;   // up to where line feeds were looked for
    std::size_t _base = 0;      // of the step whose line feeds are in _lineFeeds
    std::uint64_t _lineFeeds = 0;
};

std::FILE* ZELQMAStream::Reader::Open(const char* name, const char* mode) noexcept {
    _file = name != nullptr && mode != nullptr ? OpenStream(name, mode) : nullptr;
    if (_file != nullptr) std::setvbuf(_file, nullptr, _IONBF, 0);
    _atEnd = _hasFailed = false;
    _begin = _end = _scanned = _base = 0;
    _lineFeeds = 0;
    return _file;
}

int ZELQMAStream::Reader::Close() noexcept {
    if (_file == nullptr) return 1;
    return !CloseStream(std::exchange(_file, nullptr)) ? EOF : 0;
}

// Looks at the next step, of which there is at least one byte.
inline void ZELQMAStream::Reader::Scan() noexcept {
    const std::size_t left = _end - _scanned;
    _base = _scanned;
    _lineFeeds = FindLineFeeds(_buffer + _base);
    if (left < Step) _lineFeeds &= (std::uint64_t{1} << left) - 1;  // behind it stands what was there before
    _scanned += left < Step ? left : Step;
}

// The next line, or null at the end.
inline char* ZELQMAStream::Reader::NextLine() noexcept {
    if (_file == nullptr) return nullptr;
    while (_lineFeeds == 0) {
        if (_scanned == _end && !Fill()) return nullptr;
        Scan();
    }
    const std::size_t lineFeed = _base + static_cast<std::size_t>(std::countr_zero(_lineFeeds));
    _lineFeeds &= _lineFeeds - 1;
    char* const line = _buffer + _begin;
    _buffer[lineFeed] = '\0';
    _begin = lineFeed + 1;
    return line;
}

// Reads on; false at the end, for good.
bool ZELQMAStream::Reader::Fill() noexcept {
    if (_atEnd) return false;
    const bool hasRoom = MoveRest();
    const std::size_t count = hasRoom ? ReadStream(_file, _buffer + _end, _capacity - _end) : 0;
    _end += count;
    _atEnd = count == 0;
    _hasFailed = !hasRoom || std::ferror(_file) != 0;
    return !_atEnd;
}

// Moves what was not given yet to the front of a buffer that has room behind it.
bool ZELQMAStream::Reader::MoveRest() noexcept {
    const std::size_t rest = _end - _begin;
    const std::size_t end = (rest + Step - 1) / Step * Step;
    if (end > 0 && end != _end) std::memmove(_buffer + (end - rest), _buffer + _begin, rest);
    _begin = end - rest;
    _end = _scanned = end;
    if (end < _capacity / 2) return true;
    const std::size_t capacity = _capacity == 0 ? FirstCapacity : _capacity * 2;
    if (!GrowArray(_buffer, _room, capacity + Step)) {
        ReportAllocFailure("ZELQMAStream", capacity + Step);
        return false;
    }
    _capacity = _room - Step;
    return true;
}

ZELQMAStream::~ZELQMAStream() = default;

std::FILE* ZELQMAStream::fopen(const char* name, const char* mode) noexcept {
    if (!_reader) _reader = ZELShared<Reader>::Make();
    if (!_reader) {
        ReportAllocFailure("ZELQMAStream", sizeof(Reader));
        return nullptr;
    }
    return _reader->Open(name, mode);
}

int ZELQMAStream::fclose() noexcept {
    return _reader ? _reader->Close() : 1;
}

int ZELQMAStream::ReadError() const noexcept {
    return !_reader || _reader->HasFailed() ? 1 : 0;
}

int ZELQMAStream::getline(char*& line) noexcept {
    char* const next = _reader ? _reader->NextLine() : nullptr;
    if (next == nullptr) return 0;
    line = next;
    return 1;
}
