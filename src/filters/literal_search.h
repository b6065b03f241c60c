// Finding the characters of a literal in a candidate, in linear time whatever the two are.
//
// Short literals: find their first and last character at once, four places at a time, and compare the rest there. Long
// ones would make that quadratic (a long run of the same character against a longer one), so they are read with their
// borders: no character of the candidate is read twice, although the search is asked again and again.
#ifndef FILTERS_LITERAL_SEARCH_H
#define FILTERS_LITERAL_SEARCH_H

#include <algorithm>
#include <bit>
#include <cstddef>
#include <string_view>

#include "base/bytes16.h"
#include "filters/reached_positions.h"

namespace zel {

// A literal up to this size is compared anew at each place; a longer one needs its borders.
inline constexpr std::size_t ShortLiteralSize = 16;

// For each character the length of the longest proper beginning of `literal` that also ends there.
void FindBorders(std::u32string_view literal, int* borders) noexcept;

// The first of the `count` places from `text` on where `first` stands, and `last` stands `distance` behind it; `count`
// when there is none.
inline std::size_t FindEnds(const char32_t* text, std::size_t count, char32_t first, std::size_t distance,
                            char32_t last) noexcept {
    const Bytes16 firsts = RepeatWord(first);
    const Bytes16 lasts = RepeatWord(last);
    for (std::size_t i = 0; count >= 4 && i < count; i += 4) {
        i = std::min(i, count - 4);  // the last four may overlap those before
        const Bytes16 begins = EqualWords(LoadBytes(text + i), firsts);
        const unsigned mask = WordMask(begins & EqualWords(LoadBytes(text + i + distance), lasts));
        if (mask != 0) return i + static_cast<std::size_t>(std::countr_zero(mask));
    }
    if (count >= 4) return count;
    std::size_t i = 0;
    while (i < count && (text[i] != first || text[i + distance] != last)) ++i;
    return i;
}

// Both are searches for ReachedPositions::Keep; the literal is not empty and fits behind `to`.
class ShortLiteralSearch {
public:
    ShortLiteralSearch(std::u32string_view text, std::u32string_view literal) noexcept
        : _text(text), _literal(literal) {}

    std::size_t Next(std::size_t from, std::size_t to) const noexcept {
        const std::size_t distance = _literal.size() - 1;
        for (; from <= to; ++from) {
            from += FindEnds(_text.data() + from, to - from + 1, _literal.front(), distance, _literal.back());
            if (from > to) break;
            std::size_t i = 1;
            while (i < distance && _text[from + i] == _literal[i]) ++i;
            if (i >= distance) return from;
        }
        return ReachedPositions::None;
    }

private:
    const std::u32string_view _text;
    const std::u32string_view _literal;
};

class LongLiteralSearch {
public:
    LongLiteralSearch(std::u32string_view text, std::u32string_view literal, const int* borders) noexcept
        : _text(text), _literal(literal), _borders(borders) {}

    std::size_t Next(std::size_t from, std::size_t to) noexcept;

private:
    const std::u32string_view _text;
    const std::u32string_view _literal;
    const int* const _borders;
    std::size_t _position = 0;  // behind what was read
    std::size_t _matched = 0;   // characters before _position that begin the literal
};

}  // namespace zel

#endif
