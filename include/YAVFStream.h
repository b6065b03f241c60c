// Streams on files of the C library, without exceptions: every operation gives 0 for success and 1 for failure, and
// the reason is asked for afterwards.
//
//     YAVIFStream in("names.txt", "rt");
//     YAVOFStream out("copy.txt", "wt");
//     ZELString line;
//     while (in.getline(line, '\n', 1) == 0) out << line << endl;
//     if (in.ReadError()) YAVerr.Print("names.txt: error %d\n", in.GetErrno());
//
// For tools that print and read line by line. Where each line is looked at once and in place, ZELQMAStream is faster;
// for whole files use ZELFileBuffer.
//
// A stream has either a file of its own, which it opened, or borrows one that it never closes. Copies share an own
// file: closing one closes it for all, which then answer as closed; otherwise it is closed when the last of them ends.
// A stream that borrows takes no byte more than it hands out, so it may take turns with others on that file. Names are
// path values (backslashes on both targets); own files are not inherited by children. A directory cannot be opened.
//
// The last error is an errno value of the system's: 22 (EINVAL) for a stream without a file, and for arguments that
// make no sense. Opening and read() set it to 0; apart from that, success leaves it alone.
// Operations block as long as the file does. Distinct streams may be used from distinct threads, also copies that
// write; copies that read share a position and need a lock. When memory runs out, a line that starts with
// "# Alloc failed in YAVFStream" goes to standard output, and the operation fails with 12 (ENOMEM). Nothing throws.
#ifndef YAVFSTREAM_H
#define YAVFSTREAM_H

#include <cstddef>
#include <cstdio>

#include "ZELExport.h"
#include "ZELHeapObject.h"
#include "ZELShared.h"
#include "ZELString.h"

namespace zel {
struct YAVLinePieces;  // both for the library alone
struct YAVStandardStreams;
}  // namespace zel

class ZEL_API YAVFStream : public ZELHeapObject {
public:
    constexpr YAVFStream() noexcept = default;
    // Borrows `file`, which must stay open while this and its copies use it. Null: no file.
    YAVFStream(std::FILE* file) noexcept;
    YAVFStream(const YAVFStream& other) noexcept;
    YAVFStream& operator=(const YAVFStream& other) noexcept;
    virtual ~YAVFStream();

    // Lets go of a borrowed file, or closes an own one, for all copies. 1 when there is none, when the system reports a
    // failure, and when output was lost since the file was opened; there is no file afterwards.
    int close() noexcept;
    int isOpen() const noexcept;
    // Whether the end was met, or reading or writing failed; 1 also when there is no file.
    int endOfFile() const noexcept;
    int ReadError() const noexcept;
    int GetErrno() const noexcept { return _lastError; }

protected:
    static constexpr int InvalidArgument = 22;  // EINVAL
    enum class Standard : signed char { None = -1, Input, Output, Error };
    constexpr explicit YAVFStream(Standard which) noexcept : _lastError(0), _standard(which) {}

    // With a mode of fopen.
    int _Open(const char* name, const char* mode) noexcept;
    // With this family's own mode bits: 8 for text, else binary; 2 for appending, which input ignores. All other bits
    // mean nothing. Output empties the file unless it appends.
    int _Open(const char* name, const int& mode, int forInput) noexcept;

    // The open file, or null.
    std::FILE* File() const noexcept;
    // Record an error, and give 1: that of errno, or of `error`.
    int Fail() noexcept;
    int Fail(int error) noexcept;
    int FailLost() noexcept;
    void KeepLost() noexcept;

private:
    friend class YAVIFStream;
    friend struct zel::YAVLinePieces;
    struct Shared;

    bool MakeShared(std::FILE* own) noexcept;

    int _lastError = InvalidArgument;
    int _lostError = 0;                   // of the first insertion that failed
    Standard _standard = Standard::None;  // a borrowed stream of the process, which is no constant
    std::FILE* _borrowed = nullptr;
    ZELShared<Shared> _shared;  // an own file, or the room for lines of a borrowed one
};

class ZEL_API YAVIFStream : public YAVFStream {
public:
    constexpr YAVIFStream() noexcept = default;
    YAVIFStream(std::FILE* file) noexcept : YAVFStream(file) {}
    YAVIFStream(const char* name, const char* mode) noexcept { _Open(name, mode); }
    YAVIFStream(const char* name, const int& mode) noexcept { _Open(name, mode, 1); }
    YAVIFStream(const YAVIFStream&) noexcept = default;
    YAVIFStream& operator=(const YAVIFStream&) noexcept = default;
    ~YAVIFStream() override;

    // Closes what was open. Modes are those of fopen, or the bits 8 (text) and nothing (binary). 0 or 1.
    int open(const char* name, const char* mode) noexcept;
    int open(const char* name, const int& mode) noexcept;

    // The bytes up to `delimiter`, which is taken and not given, or up to the end; of any length, NULs included. A
    // delimiter outside 0 to 255 is never met. With `skipEmpty` not 0, empty lines are passed over. 1 when there is no
    // file, when reading fails, and when the end comes before anything else; a last line without a delimiter gives 0.
    int getline(ZELString& line, int delimiter, int skipEmpty) noexcept;
    // The same into a block of `size` bytes, all of which that are not used are set to 0. A line that is longer comes
    // in pieces of size - 1 bytes; one of exactly that length is followed by an empty piece. 1 also, with the error 22,
    // for null and for a size below 2.
    int getline(char* buffer, std::size_t size, int delimiter) noexcept;
    // Up to `size` bytes; fewer at the end and after a failure, which alone sets the last error. Forgets an end or an
    // error that was met, so that a file that grows may be read on. `buffer` has room for one byte at least, which is
    // set to 0 first, also when `size` is 0. Null gives 0.
    std::size_t read(char* buffer, std::size_t size) noexcept;

private:
    friend struct zel::YAVStandardStreams;
    constexpr explicit YAVIFStream(Standard which) noexcept : YAVFStream(which) {}

    int LineResult(bool any) noexcept;
};

// Everything but the insertions is flushed immediately; of those, endl and flush do.
//
// Errors: once output was lost, by an insertion or by any other operation, each later operation that flushes fails, and
// so does close(), until another file is opened. GetErrno() then returns the first error of the insertions, if there
// was one.
class ZEL_API YAVOFStream : public YAVFStream {
public:
    constexpr YAVOFStream() noexcept = default;
    YAVOFStream(std::FILE* file) noexcept : YAVFStream(file) {}
    YAVOFStream(const char* name, const char* mode) noexcept { _Open(name, mode); }
    YAVOFStream(const char* name, const int& mode) noexcept { _Open(name, mode, 0); }
    YAVOFStream(const YAVOFStream&) noexcept = default;
    YAVOFStream& operator=(const YAVOFStream&) noexcept = default;
    ~YAVOFStream() override;

    // Closes what was open. Modes are those of fopen, or the bits 8 (text) and 2 (appending). 0 or 1.
    int open(const char* name, const char* mode) noexcept;
    int open(const char* name, const int& mode) noexcept;

    // A null format fails with the error 22.
    int Print(const char* format, ...) noexcept ZEL_PRINTF_LIKE(2, 3);
    int Putc(int c) noexcept;
    // Null and a size of 0 write nothing and give 0.
    int write(const char* data, std::size_t size) noexcept;
    int flush() noexcept;

    // Insertions do nothing without a file; GetErrno() does not change. An insertion that fails is reported by the next
    // operation that flushes. Floating-point numbers appear as by %g, a pointer as
    // "0x" and the low 32 bits of the address in hexadecimal; a null text writes nothing.
    YAVOFStream& operator<<(char c) noexcept;
    YAVOFStream& operator<<(unsigned char c) noexcept;
    YAVOFStream& operator<<(int value) noexcept;
    YAVOFStream& operator<<(unsigned int value) noexcept;
    YAVOFStream& operator<<(long value) noexcept;
    YAVOFStream& operator<<(unsigned long value) noexcept;
    YAVOFStream& operator<<(long long value) noexcept;
    YAVOFStream& operator<<(unsigned long long value) noexcept;
    YAVOFStream& operator<<(double value) noexcept;
    YAVOFStream& operator<<(long double value) noexcept;
    YAVOFStream& operator<<(void* pointer) noexcept;
    YAVOFStream& operator<<(const char* text) noexcept;
    YAVOFStream& operator<<(YAVOFStream& (*manipulator)(YAVOFStream&)) { return manipulator(*this); }

private:
    friend struct zel::YAVStandardStreams;
    constexpr explicit YAVOFStream(Standard which) noexcept : YAVFStream(which) {}

    template <class Value>
    YAVOFStream& Insert(const char* format, Value value) noexcept;
    int Written(bool done) noexcept;
};

// A line feed and a flush; a flush.
ZEL_API YAVOFStream& endl(YAVOFStream& stream) noexcept;
ZEL_API YAVOFStream& flush(YAVOFStream& stream) noexcept;

// The process's standard streams, borrowed. They serve before main and after it.
extern ZEL_API YAVIFStream& YAVin;
extern ZEL_API YAVOFStream& YAVout;
extern ZEL_API YAVOFStream& YAVerr;

#endif
