// The Knuth-Morris-Pratt search, kept between calls, so that what was read once is not read again.

#include "filters/literal_search.h"

using namespace zel;

void zel::FindBorders(std::u32string_view literal, int* borders) noexcept {
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
    const char32_t first = _literal.front();
    const std::size_t end = to + _literal.size();
    while (_position < end) {
        if (_matched == 0) _position += FindEnds(_text.data() + _position, end - _position, first, 0, first);
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
    return ReachedPositions::None;
}
