// Carries the set of reachable positions of the candidate through the lexemes: a fixed lexeme moves each position at
// which it is accepted by its size, "*" opens the set up to the end, a repeated block extends it as far as its
// characters go. The filter matches when the end is in the set. That decides what trying every way in turn would,
// without trying any position of the candidate twice for the same lexeme.
//
// The lexemes behind the last one of variable size, the tail, stand at a place that the length of the candidate gives;
// they are tested first, since that settles most names, and the set is carried up to where they begin.
// Only the smallest position counts in front of "*", so there a search ends with its first find.
//
// No fixed lexeme is accepted at the end of the candidate, not even a block with the count 0.

#include "regex/filter_matcher.h"

#include <algorithm>

#include "regex/latin_set.h"
#include "regex/literal_search.h"

namespace {

// A search for ReachedPositions::Keep: `count` characters in a row that `admits(position)` accepts. What is known to be
// accepted is not asked again, so that all searches together are linear.
template <class Admits>
class BlockSearch {
public:
    BlockSearch(const Admits& admits, std::size_t count) noexcept : _admits(admits), _count(count) {}

    std::size_t Next(std::size_t from, std::size_t to) noexcept {
        for (std::size_t known = _known; from <= to; from = known + 1) {
            known = std::max(known, from);
            while (known - from < _count && _admits(known)) ++known;
            _known = known;
            if (known - from >= _count) return from;
        }
        return ReachedPositions::None;
    }

private:
    const Admits _admits;
    const std::size_t _count;
    std::size_t _known = 0;  // every position from the last `from` up to here is accepted
};

}  // namespace

int FilterMatcher::Match(const TAUnicodeRegularExpression& filter, std::u32string_view text) noexcept {
    const auto tailSize = static_cast<std::size_t>(filter._tailSize);
    if (tailSize > text.size() || (filter._tail == 0 && tailSize < text.size())) return 0;
    FilterMatcher matcher(filter, text, text.size() - tailSize);
    if (!matcher.AdmitsTail()) return 0;
    for (int i = 0; i < filter._tail; ++i)
        if (!matcher.Pass(i)) return matcher._reached.IsOutOfMemory() ? -1 : 0;
    return matcher._reached.Holds(matcher._end) ? 1 : 0;
}

bool FilterMatcher::AdmitsTail() const noexcept {
    std::size_t position = _end;
    for (int i = _filter._tail; i < _filter._lastLexeme; ++i) {
        const Lexeme& lexeme = _filter._lexemes[i];
        const auto size = static_cast<std::size_t>(lexeme.size);
        if (position == _text.size()) return false;
        if (lexeme.type == Expression::Literal) {
            if (_text.compare(position, size, TextOf(lexeme)) != 0) return false;
        } else if (lexeme.type != Expression::AnyOne) {
            const Admission admits = AdmittedBy(i);
            for (std::size_t j = 0; j < size; ++j)
                if (!admits(position + j)) return false;
        }
        position += size;
    }
    return true;
}

bool FilterMatcher::Pass(int index) noexcept {
    const Lexeme& lexeme = _filter._lexemes[index];
    if (lexeme.type == Expression::AnyRun) {
        _reached.Open();
        return true;
    }
    if (lexeme.size >= 0) return PassFixed(index);
    _reached.Extend(AdmittedBy(index));
    return true;
}

bool FilterMatcher::PassFixed(int index) noexcept {
    const Lexeme& lexeme = _filter._lexemes[index];
    const auto size = static_cast<std::size_t>(lexeme.size);
    if (size > _end || _text.empty() || !_reached.DropAbove(std::min(_end - size, _text.size() - 1))) return false;
    const bool isFirstEnough = _filter._lexemes[index + 1].type == Expression::AnyRun;
    if (lexeme.type == Expression::Literal) {
        if (!PassLiteral(lexeme, isFirstEnough)) return false;
    } else if (lexeme.type != Expression::AnyOne) {
        BlockSearch search(AdmittedBy(index), size);
        if (!_reached.Keep(search, isFirstEnough)) return false;
    }
    _reached.Move(size);
    return true;
}

bool FilterMatcher::PassLiteral(const Lexeme& literal, bool isFirstEnough) noexcept {
    const std::u32string_view text = TextOf(literal);
    if (text.size() <= ShortLiteralSize) {
        ShortLiteralSearch search(_text, text);
        return _reached.Keep(search, isFirstEnough);
    }
    LongLiteralSearch search(_text, text, _filter._borders + literal.start);
    return _reached.Keep(search, isFirstEnough);
}

FilterMatcher::Admission FilterMatcher::AdmittedBy(int block) const noexcept {
    return {_text.data(), _filter._sets[block], *this, _filter._lexemes[block]};
}

bool FilterMatcher::IsWideAdmitted(const Lexeme& block, char32_t code) const noexcept {
    int i = block.first;
    while (i <= block.last && !_filter._checkCharacterRule(ZELUnicodeChar(code), i)) ++i;
    return (i <= block.last) == (block.type == Expression::Block);
}

std::u32string_view FilterMatcher::TextOf(const Lexeme& literal) const noexcept {
    return {_filter._filter.View().data() + literal.start, static_cast<std::size_t>(literal.size)};
}
