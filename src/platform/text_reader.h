// C streams and readers on files that children do not inherit. Paths are path values; see native_path.h.
#ifndef PLATFORM_TEXT_READER_H
#define PLATFORM_TEXT_READER_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <utility>

namespace zel {

// Opens `path` as an unbuffered text stream for writing, made if missing (Linux: mode 0666 less the umask), emptied
// first unless `append`; in append mode every write goes to the end of that moment. Children do not inherit it. Null on
// failure; closed with fclose.
std::FILE* OpenTextForWriting(const char* path, bool append) noexcept;

// Owns a file that is open for reading as text: on Windows CR LF arrives as LF, and a byte 0x1A ends the text.
class TextReader {
public:
    static constexpr std::size_t MostAtOnce = std::size_t{1} << 30;  // systems count what is read with 32 bits

    TextReader() noexcept = default;
    TextReader(TextReader&& other) noexcept { *this = std::move(other); }
    TextReader& operator=(TextReader&& other) noexcept {
        std::swap(_descriptor, other._descriptor);
        std::swap(_size, other._size);
        return *this;
    }
    ~TextReader() { Close(); }

    // Closes what was open. Others may read and write the file meanwhile. False for directories too.
    bool Open(const char* path) noexcept;
    void Close() noexcept;
    // The size that the system reported when the file was opened, in bytes before any translation. A hint: files
    // change, and pipes and files of the system report 0 or any number.
    std::int64_t Size() const noexcept { return _size; }
    // Reads up to `size` bytes, at most MostAtOnce; fewer bytes do not mean the end. Interruptions are retried. 0 at
    // the end, -1 when the system fails or no file is open.
    std::ptrdiff_t Read(char* bytes, std::size_t size) noexcept;

private:
    int _descriptor = -1;
    std::int64_t _size = 0;
};

}  // namespace zel

#endif
