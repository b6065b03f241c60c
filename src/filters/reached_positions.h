// The positions of a candidate that the lexemes up to some point can reach: the one state of matching.
//
// Mostly they are all positions between two, and then the two are all there is. Only where a lexeme leaves gaps does
// each position get a bit, counted from _base, so that moving all positions means moving the base.
//
// Invariants: never empty (an operation that would empty the set returns false, and the match is over); _low and _high
// are reached; no bit outside them is set; _high never passes the limit given at construction. With bits there is room
// for every position from _base to the limit. Up to 1024 of them fit into the object.
#ifndef FILTERS_REACHED_POSITIONS_H
#define FILTERS_REACHED_POSITIONS_H

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "base/memory.h"

namespace zel {

class ReachedPositions {
public:
    static constexpr std::size_t None = ~std::size_t{0};

    // Position 0 alone.
    explicit ReachedPositions(std::size_t limit) noexcept : _limit(limit) {}
    ReachedPositions(const ReachedPositions&) = delete;
    ReachedPositions& operator=(const ReachedPositions&) = delete;
    ~ReachedPositions() {
        if (_words != _inlineWords) Free(_words);
    }

    bool IsOutOfMemory() const noexcept { return _isOutOfMemory; }
    bool Holds(std::size_t position) const noexcept {
        return position >= _low && position <= _high && (!_hasBits || Bit(position));
    }

    bool IsOne() const noexcept { return _low == _high; }
    std::size_t First() const noexcept { return _low; }
    void KeepLast() noexcept {
        _low = _high;
        _hasBits = false;
    }

    // All positions from the smallest to the limit.
    void Open() noexcept {
        _high = _limit;
        _hasBits = false;
    }
    void Move(std::size_t distance) noexcept {
        _low += distance;
        _high += distance;
        _base += distance;
    }
    // Removes the positions above `highest`; false when none is left.
    bool DropAbove(std::size_t highest) noexcept {
        if (_low > highest) return false;
        if (_hasBits)
            DropBitsAbove(highest);
        else
            _high = std::min(_high, highest);
        return true;
    }

    // Adds to each position the next one, again and again, as long as `admits(position)`; admits.Next(from, end, false)
    // gives the first position from `from` to `end` that is not admitted, or `end`.
    template <class Admits>
    void Extend(const Admits& admits) noexcept;

    // Keeps the positions that `search` accepts, or the first of them: search.Next(from, to) gives the first accepted
    // position from `from` to `to`, or None, and is asked with rising `from`. False when nothing is left or memory ran
    // out.
    template <class Search>
    bool Keep(Search& search, bool isFirstEnough) noexcept;

private:
    static constexpr std::size_t InlineWords = 16;

    bool Bit(std::size_t position) const noexcept {
        const std::size_t bit = position - _base;
        return (_words[bit / 64] >> bit % 64 & 1) != 0;
    }
    void SetBit(std::size_t position) noexcept {
        const std::size_t bit = position - _base;
        _words[bit / 64] |= std::uint64_t{1} << bit % 64;
    }
    void ClearBit(std::size_t position) noexcept {
        const std::size_t bit = position - _base;
        _words[bit / 64] &= ~(std::uint64_t{1} << bit % 64);
    }
    std::size_t NextBit(std::size_t from) const noexcept;
    void DropBitsAbove(std::size_t highest) noexcept;
    bool AddAbove(std::size_t position) noexcept;
    bool BeginBits() noexcept;
    template <class Search>
    bool KeepBits(Search& search, bool isFirstEnough) noexcept;

    const std::size_t _limit;
    std::size_t _low = 0;
    std::size_t _high = 0;
    std::size_t _base = 0;
    std::size_t _room = InlineWords;  // words at _words
    bool _hasBits = false;
    bool _isOutOfMemory = false;
    std::uint64_t* _words = _inlineWords;
    std::uint64_t _inlineWords[InlineWords];
};

template <class Admits>
void ReachedPositions::Extend(const Admits& admits) noexcept {
    std::size_t count = 0;
    if (_hasBits) {
        for (std::size_t position = _low; position != None; position = NextBit(position + 1), ++count) {
            if (position == _limit || !admits(position)) continue;
            SetBit(position + 1);
            if (position == _high) ++_high;
        }
        _hasBits = count <= _high - _low;
    } else {
        _high = admits.Next(_high, _limit, false);
    }
}

template <class Search>
bool ReachedPositions::Keep(Search& search, bool isFirstEnough) noexcept {
    if (_hasBits) return KeepBits(search, isFirstEnough);
    const std::size_t last = _high;
    std::size_t position = search.Next(_low, last);
    if (position == None) return false;
    _low = _high = position;
    while (!isFirstEnough && position < last && (position = search.Next(position + 1, last)) != None)
        if (!AddAbove(position)) return false;
    return true;
}

template <class Search>
bool ReachedPositions::KeepBits(Search& search, bool isFirstEnough) noexcept {
    std::size_t low = None;
    std::size_t high = None;
    std::size_t count = 0;
    for (std::size_t position = _low; position != None; position = NextBit(position + 1)) {
        if (search.Next(position, position) == None) {
            ClearBit(position);
            continue;
        }
        if (count++ == 0) low = position;
        high = position;
        if (isFirstEnough) break;
    }
    if (count == 0) return false;
    _low = low;
    _high = high;
    _hasBits = count <= high - low;
    return true;
}

}  // namespace zel

#endif
