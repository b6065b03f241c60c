// Sixteen bytes at a time, one comparison finds what becomes a blank and another finds the end of the line. Cleaning
// works in place and changes nothing when it is done again, so each line starts anew behind the end of the one before,
// on whatever boundary.
//
// The dangerous cases are the ends: cleaning reads and writes up to 15 bytes behind the text, which is why the block
// has room there, and a line that is exactly as long as allowed may meet the end of the block or of the file.

#include "files/line_reader.h"

#include <emmintrin.h>  // SSE2 is part of every x86-64

#include <algorithm>
#include <bit>
#include <cstring>

using namespace zel;

namespace {

constexpr std::size_t Step16 = 16;
constexpr std::size_t FirstBlock = (std::size_t{1} << 16) - Step16;

// Turns bytes that are negative or below the blank into blanks, up to the first end of line from `from` on. Returns its
// position, or `end`.
std::size_t CleanLine(char* text, std::size_t from, std::size_t end) noexcept {
    const __m128i blank = _mm_set1_epi8(' ');
    const __m128i lineEnd = _mm_set1_epi8('\n');
    for (; from < end; from += Step16) {
        auto* const place = reinterpret_cast<__m128i*>(text + from);
        const __m128i bytes = _mm_loadu_si128(place);
        const __m128i ends = _mm_cmpeq_epi8(bytes, lineEnd);
        const __m128i cleaned = _mm_andnot_si128(ends, _mm_cmplt_epi8(bytes, blank));
        _mm_storeu_si128(place, _mm_or_si128(_mm_andnot_si128(cleaned, bytes), _mm_and_si128(cleaned, blank)));
        const auto found = static_cast<unsigned>(_mm_movemask_epi8(ends));
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
