// What the streams need beside the C library's own functions.
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

// Reads what has arrived behind the position of the descriptor, up to `size` bytes (at most MostToArrive): waits for
// the first byte alone. 0 at the end; -1, with errno set, on failure. Interruptions are retried. In text mode Windows
// gives CR LF as LF. For streams that are read in no other way, since their own buffer is passed by.
inline constexpr std::size_t MostToArrive = std::size_t{1} << 30;  // systems count what is read with 32 bits
std::ptrdiff_t ReadArrived(std::FILE* stream, char* bytes, std::size_t size) noexcept;

// Writes up to MostPieces pieces behind what the stream holds: in one call of the system's where it has one for that.
inline constexpr int MostPieces = 64;
bool WritePieces(std::FILE* stream, const std::string_view* pieces, int count) noexcept;

// Forgets an end and an error that were met, so that what was added to the file since can be read.
void ForgetEnd(std::FILE* stream) noexcept;

// A block of the C heap that grows with what is put into it.
struct LineRoom {
    LineRoom() = default;
    LineRoom(const LineRoom&) = delete;
    LineRoom& operator=(const LineRoom&) = delete;
    ~LineRoom() { Free(text); }

    char* text = nullptr;
    std::size_t size = 0;
};

// Reads from `stream` into `room` up to a delimiter, which is counted in the result and as `met`, up to `most` bytes,
// or up to the end; perhaps fewer, but one at least. Takes nothing more, and locks the stream once. A delimiter outside
// 0 to 255 is never met. 0 at the end, after a failure, and when memory ran out, which neither feof nor ferror tells.
std::size_t ReadPiece(std::FILE* stream, int delimiter, std::size_t most, LineRoom& room, bool& met) noexcept;

}  // namespace zel

#endif
