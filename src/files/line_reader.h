// Lines of a text file as ReadFile delivers them: without control and non-ASCII bytes.
//
// The file comes in big blocks. Lines are found and cleaned in the block itself, in one pass; what is left of a line at
// the end of a block moves to its front. The block grows when a line does not fit, so memory follows what was found.
#ifndef FILES_LINE_READER_H
#define FILES_LINE_READER_H

#include <cstddef>
#include <string_view>

#include "files/byte_buffer.h"
#include "platform/text_reader.h"

namespace zel {

class LineReader {
public:
    enum class Step {
        Line,
        End,
        Failure,      // a line is too long, or the system failed
        MemoryRanOut  // said already
    };

    // A line has fewer than `bufferSize` characters, but may always have one.
    explicit LineReader(int bufferSize) noexcept;

    bool Open(const char* path) noexcept { return _reader.Open(path); }
    // The next line without its end, followed by a NUL; valid until the next call.
    Step Next(std::string_view& line) noexcept;

private:
    Step Fill() noexcept;

    TextReader _reader;
    ByteBuffer _block;
    std::size_t _begin = 0;  // of the bytes that were read and not delivered
    std::size_t _end = 0;
    const std::size_t _maxLength;
    bool _atEnd = false;
};

}  // namespace zel

#endif
