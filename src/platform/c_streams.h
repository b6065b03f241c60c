// Functions on C streams that the C library lacks.
#ifndef PLATFORM_C_STREAMS_H
#define PLATFORM_C_STREAMS_H

#include <cstddef>
#include <cstdio>
#include <string_view>

#include "base/memory.h"

namespace zel {

// Opens a path value with a mode of fopen; null, with errno set, on failure and for a directory. Children do not
// inherit the file.
std::FILE* OpenStream(const char* path, const char* mode) noexcept;

// Reads the bytes that have arrived after the position of the descriptor, up to `size` (at most MostToArrive); waits
// only for the first byte. 0 at the end; -1, with errno set, on failure. Interruptions are retried. In text mode
// Windows gives CR LF as LF. For streams that are read in no other way, since their own buffer is passed by.
inline constexpr std::size_t MostToArrive = std::size_t{1} << 30;  // systems count what is read with 32 bits
std::ptrdiff_t ReadArrived(std::FILE* stream, char* bytes, std::size_t size) noexcept;

// fread, fwrite, fflush and fclose, retried when a signal interrupts them: each byte is read or written once. (glibc
// discards the contents of a stream's buffer when their write is interrupted, so a plain fflush cannot be retried.)
// Interruptions leave no error indicator behind. The first two return the bytes that were read or written: all, or
// fewer at the end and, with errno set, after a failure.
std::size_t ReadStream(std::FILE* stream, char* bytes, std::size_t size) noexcept;
std::size_t WriteStream(std::FILE* stream, std::string_view bytes) noexcept;
bool FlushStream(std::FILE* stream) noexcept;
bool CloseStream(std::FILE* stream) noexcept;

// Writes up to MostPieces pieces after the contents of the stream's buffer, in one call where the system has one.
inline constexpr int MostPieces = 64;
bool WritePieces(std::FILE* stream, const std::string_view* pieces, int count) noexcept;

// Clears the end-of-file and error indicators, so that bytes appended since can be read.
void ForgetEnd(std::FILE* stream) noexcept;

// A block of the C heap that grows with its contents.
struct LineRoom {
    LineRoom() = default;
    LineRoom(const LineRoom&) = delete;
    LineRoom& operator=(const LineRoom&) = delete;
    ~LineRoom() { Free(text); }

    char* text = nullptr;
    std::size_t size = 0;
};

// Reads, also despite interruptions, from `stream` into `room` up to a delimiter, which is counted in the result and as
// `met`, up to `most` bytes, or up to the end; perhaps fewer, but one at least. Takes nothing more, and locks the
// stream once. A delimiter outside 0 to 255 is never met. 0 at the end, after a failure, and when memory ran out, which
// neither feof nor ferror reports.
std::size_t ReadPiece(std::FILE* stream, int delimiter, std::size_t most, LineRoom& room, bool& met) noexcept;

}  // namespace zel

#endif
