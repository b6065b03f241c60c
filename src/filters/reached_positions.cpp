// The set once it has gaps: finding, adding and dropping single bits.

#include "filters/reached_positions.h"

#include <algorithm>
#include <bit>

#include "base/failure_report.h"

using namespace zel;

void ReachedPositions::DropBitsAbove(std::size_t highest) noexcept {
    while (_high > highest || !Bit(_high)) ClearBit(_high--);
}

// The first position of the set from `from` on.
std::size_t ReachedPositions::NextBit(std::size_t from) const noexcept {
    if (from > _high) return None;
    const std::size_t last = (_high - _base) / 64;
    std::size_t word = (from - _base) / 64;
    std::uint64_t bits = _words[word] & ~std::uint64_t{0} << (from - _base) % 64;
    while (bits == 0 && word < last) bits = _words[++word];
    return bits != 0 ? _base + word * 64 + static_cast<std::size_t>(std::countr_zero(bits)) : None;
}

bool ReachedPositions::AddAbove(std::size_t position) noexcept {
    if (!_hasBits && position > _high + 1 && !BeginBits()) return false;
    _high = position;
    if (_hasBits) SetBit(position);
    return true;
}

bool ReachedPositions::BeginBits() noexcept {
    _base = _low;
    const std::size_t count = (_limit - _base) / 64 + 1;
    if (count > _room) {
        auto* const words = AllocateArray<std::uint64_t>(count);
        if (words == nullptr) {
            ReportAllocFailure("TAUnicodeRegularExpression", count * sizeof(std::uint64_t));
            _isOutOfMemory = true;
            return false;
        }
        if (_words != _inlineWords) Free(_words);
        _words = words;
        _room = count;
    }
    std::fill_n(_words, count, 0);
    for (std::size_t position = _low; position <= _high; ++position) SetBit(position);
    _hasBits = true;
    return true;
}
