// Short literals: find the first character, four at a time, and compare the rest there. Long ones would make that
// quadratic (a long run of the same character against a longer one), so they are read with their borders: no character
// of the candidate is read twice, although the search is asked again and again.

#include "regex/literal_search.h"

#include <emmintrin.h>  // SSE2 is part of every x86-64

#include <bit>

namespace {

constexpr std::size_t None = ReachedPositions::None;

}  // namespace

std::size_t FindCharacter(const char32_t* text, std::size_t count, char32_t code) noexcept {
    const __m128i wanted = _mm_set1_epi32(static_cast<int>(code));
    std::size_t i = 0;
    for (; i + 4 <= count; i += 4) {
        const __m128i four = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + i));
        const int found = _mm_movemask_ps(_mm_castsi128_ps(_mm_cmpeq_epi32(four, wanted)));
        if (found != 0) return i + static_cast<std::size_t>(std::countr_zero(static_cast<unsigned>(found)));
    }
    while (i < count && text[i] != code) ++i;
    return i;
}

std::size_t ShortLiteralSearch::Next(std::size_t from, std::size_t to) const noexcept {
    for (; from <= to; ++from) {
        from += FindCharacter(_text.data() + from, to - from + 1, _literal.front());
        if (from > to) break;
        if (_text.compare(from, _literal.size(), _literal) == 0) return from;
    }
    return None;
}

void FindBorders(std::u32string_view literal, int* borders) noexcept {
    borders[0] = 0;
    for (std::size_t i = 1; i < literal.size(); ++i) {
        int border = borders[i - 1];
        while (border > 0 && literal[i] != literal[static_cast<std::size_t>(border)]) border = borders[border - 1];
        borders[i] = border + (literal[i] == literal[static_cast<std::size_t>(border)] ? 1 : 0);
    }
}

std::size_t LongLiteralSearch::Next(std::size_t from, std::size_t to) noexcept {
    if (from > _position) {
        _position = from;
        _matched = 0;
    }
    const std::size_t end = to + _literal.size();
    while (_position < end) {
        if (_matched == 0) _position += FindCharacter(_text.data() + _position, end - _position, _literal.front());
        if (_position == end) break;
        while (_matched > 0 && _literal[_matched] != _text[_position])
            _matched = static_cast<std::size_t>(_borders[_matched - 1]);
        _matched += _literal[_matched] == _text[_position] ? 1 : 0;
        ++_position;
        if (_matched < _literal.size()) continue;
        _matched = static_cast<std::size_t>(_borders[_matched - 1]);
        const std::size_t start = _position - _literal.size();
        if (start >= from) return start;
    }
    return None;
}
