// Sixteen bytes at a time, one comparison finds what becomes a blank and another finds the end of the line. Cleaning
// works in place and changes nothing when it is done again, so each line starts anew behind the end of the one before,
// on whatever boundary.
//
// The dangerous cases are the ends: cleaning reads and writes up to 15 bytes behind the text, which is why the block
// has room there, and a line that is exactly as long as allowed may meet the end of the block or of the file.

#include "files/line_reader.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "base/bytes16.h"

using namespace zel;

namespace {

constexpr std::size_t Step16 = 16;
constexpr std::size_t FirstBlock = (std::size_t{1} << 16) - Step16;

// Turns bytes that are negative or below the blank into blanks, up to the first end of line from `from` on. Returns its
// position, or `end`.
std::size_t CleanLine(char* text, std::size_t from, std::size_t end) noexcept {
    const Bytes16 blank = RepeatByte(' ');
    const Bytes16 lineEnd = RepeatByte('\n');
    for (; from < end; from += Step16) {
        const Bytes16 bytes = LoadBytes(text + from);
        const Bytes16 ends = EqualBytes(bytes, lineEnd);
        const Bytes16 cleaned = Without(LessBytes(bytes, blank), ends);
        StoreBytes(text + from, Without(bytes, cleaned) | (cleaned & blank));
        const unsigned found = ByteMask(ends);
        if (found == 0) continue;
        const std::size_t position = from + static_cast<std::size_t>(std::countr_zero(found));
        return position < end ? position : end;
    }
    return end;
}

}  // namespace

LineReader::LineReader(int bufferSize) noexcept
    : _maxLength(bufferSize > 2 ? static_cast<std::size_t>(bufferSize) - 1 : 1) {}

// Reads on behind the bytes that are left. Line: there are more of them, or the end of the file is known.
LineReader::Step LineReader::Fill() noexcept {
    const std::size_t left = _end - _begin;
    if (left > 0 && _begin > 0) std::memmove(_block.Data(), _block.Data() + _begin, left);
    _begin = 0;
    _end = left;
    const std::size_t capacity = _block.Capacity();
    if ((capacity == 0 || left + Step16 > capacity / 2) && !_block.Reserve(capacity == 0 ? FirstBlock : capacity * 2))
        return Step::MemoryRanOut;
    const std::size_t room = std::min(_block.Capacity() - Step16 - left, TextReader::MostAtOnce);
    const std::ptrdiff_t count = _reader.Read(_block.Data() + left, room);
    if (count < 0) return Step::Failure;
    _end += static_cast<std::size_t>(count);
    _atEnd = count == 0;
    return Step::Line;
}

LineReader::Step LineReader::Next(std::string_view& line) noexcept {
    std::size_t cleaned = 0;  // bytes behind _begin that hold no end of line
    for (;;) {
        const std::size_t stop = _begin < _end ? CleanLine(_block.Data(), _begin + cleaned, _end) : _end;
        const std::size_t length = stop - _begin;
        if (length > _maxLength) return Step::Failure;
        if (stop < _end || (_atEnd && length > 0)) {
            _block.Data()[stop] = '\0';
            line = {_block.Data() + _begin, length};
            _begin = stop < _end ? stop + 1 : _end;
            return Step::Line;
        }
        if (_atEnd) return Step::End;
        cleaned = length;
        const Step filled = Fill();
        if (filled != Step::Line) return filled;
    }
}
