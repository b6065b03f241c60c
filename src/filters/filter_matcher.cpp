// Carries the set of reachable positions of the candidate through the lexemes: a fixed lexeme moves each position at
// which it is accepted by its size, "*" opens the set up to the end, a repeated block extends it as far as its
// characters go. The filter matches when the end is in the set. That decides what trying every way in turn would,
// without trying any position of the candidate twice for the same lexeme.
//
// The lexemes behind the last one of variable size, the tail, stand at a place that the length of the candidate gives;
// they are tested first, since that settles most names, and the set is carried up to where they begin. Next comes the
// last literal behind several stars: without it there is no match.
// Only the smallest position counts in front of "*", so there a search ends with its first find. And where a repeated
// block starts from one position and none of its characters can begin what follows, only the position that it ends at
// is of use.
//
// No fixed lexeme is accepted at the end of the candidate, not even a block with the count 0.

#include "filters/filter_matcher.h"

#include <algorithm>
#include <bit>

#include "TAUnicodeRegularExpression.h"
#include "filters/block_set.h"
#include "filters/literal_search.h"
#include "filters/reached_positions.h"

using namespace zel;

namespace {

// A search for ReachedPositions::Keep: `count` characters in a row that the block admits. What is known to be admitted
// is not asked again, so that all searches together are linear.
template <class Admission>
class BlockSearch {
public:
    BlockSearch(const Admission& admits, std::size_t count) noexcept : _admits(admits), _count(count) {}

    std::size_t Next(std::size_t from, std::size_t to) noexcept {
        if (_count == 1) {
            const std::size_t found = _admits.Next(from, to + 1, true);
            return found <= to ? found : ReachedPositions::None;
        }
        while (from <= to) {
            _known = std::max(_known, from);
            if (_known < from + _count) _known = _admits.Next(_known, from + _count, false);
            if (_known >= from + _count) return from;
            from = _known + 1;
        }
        return ReachedPositions::None;
    }

private:
    const Admission _admits;
    const std::size_t _count;
    std::size_t _known = 0;  // every position from the last `from` up to here is admitted
};

}  // namespace

// All of it is inline: candidates are short, and calls would cost more than what they do.
class zel::FilterMatcher {
public:
    static int Match(const TAUnicodeRegularExpression& filter, std::u32string_view text) noexcept;

private:
    using Expression = TAUnicodeRegularExpression;
    using Lexeme = Expression::Lexeme;

    FilterMatcher(const TAUnicodeRegularExpression& filter, std::u32string_view text, std::size_t end) noexcept
        : _filter(filter), _text(text), _end(end), _reached(end) {}

    bool AcceptsTail() const noexcept;
    bool HoldsTelling() const noexcept;
    bool Accepts(int index, std::size_t position) const noexcept;
    bool Pass(int index) noexcept;
    bool PassFixed(int index) noexcept;
    bool KeepAccepted(int index) noexcept;
    bool KeepLiteral(const Lexeme& literal, bool isFirstEnough) noexcept;
    // What a block admits.
    struct Admission {
        bool operator()(std::size_t position) const noexcept {
            const char32_t code = text[position];
            if (code < BlockSet::Size) return set.Holds(code);
            return set.hasWideRules ? matcher.IsWideAdmitted(block, code) : set.holdsWide;
        }
        // The first position from `from` on that is admitted, or is not; `end` when there is none before it.
        std::size_t Next(std::size_t from, std::size_t end, bool isAdmitted) const noexcept;

        const char32_t* text;
        const BlockSet& set;
        const FilterMatcher& matcher;
        const Lexeme& block;
    };
    Admission AdmittedBy(int block) const noexcept;
    bool IsWideAdmitted(const Lexeme& block, char32_t code) const noexcept;
    std::u32string_view TextOf(const Lexeme& literal) const noexcept {
        return {_filter._filter.View().data() + literal.start, static_cast<std::size_t>(literal.size)};
    }

    const TAUnicodeRegularExpression& _filter;
    const std::u32string_view _text;
    const std::size_t _end;  // where the tail begins in the text
    ReachedPositions _reached;
};

inline int FilterMatcher::Match(const TAUnicodeRegularExpression& filter, std::u32string_view text) noexcept {
    const auto tailSize = static_cast<std::size_t>(filter._tailSize);
    if (tailSize > text.size() || (filter._tail == 0 && tailSize < text.size())) return 0;
    FilterMatcher matcher(filter, text, text.size() - tailSize);
    if (!matcher.AcceptsTail() || !matcher.HoldsTelling()) return 0;
    for (int i = 0; i < filter._tail; ++i)
        if (!matcher.Pass(i)) return matcher._reached.IsOutOfMemory() ? -1 : 0;
    return matcher._reached.Holds(matcher._end) ? 1 : 0;
}

inline bool FilterMatcher::AcceptsTail() const noexcept {
    std::size_t position = _end;
    for (int i = _filter._tail; i < _filter._lastLexeme; ++i) {
        if (position == _text.size() || !Accepts(i, position)) return false;
        position += static_cast<std::size_t>(_filter._lexemes[i].size);
    }
    return true;
}

inline bool FilterMatcher::HoldsTelling() const noexcept {
    if (_filter._telling < 0) return true;
    const std::u32string_view literal = TextOf(_filter._lexemes[_filter._telling]);
    if (literal.size() > _end) return false;
    const std::size_t count = _end - literal.size() + 1;
    return FindEnds(_text.data(), count, literal.front(), literal.size() - 1, literal.back()) < count;
}

// Whether a fixed lexeme, which fits there, is accepted at the position.
inline bool FilterMatcher::Accepts(int index, std::size_t position) const noexcept {
    const Lexeme& lexeme = _filter._lexemes[index];
    if (lexeme.type == Expression::AnyOne) return true;
    const std::size_t end = position + static_cast<std::size_t>(lexeme.size);
    if (lexeme.type != Expression::Literal) return AdmittedBy(index).Next(position, end, false) == end;
    const char32_t* wanted = TextOf(lexeme).data();
    while (position < end && _text[position] == *wanted) ++position, ++wanted;
    return position == end;
}

inline bool FilterMatcher::Pass(int index) noexcept {
    const Lexeme& lexeme = _filter._lexemes[index];
    if (lexeme.type == Expression::AnyRun) {
        _reached.Open();
        return true;
    }
    if (lexeme.size >= 0) return PassFixed(index);
    const bool isFromOne = _reached.IsOne();
    _reached.Extend(AdmittedBy(index));
    if (isFromOne && _filter._sets[index].endsRun) _reached.KeepLast();
    return true;
}

inline bool FilterMatcher::PassFixed(int index) noexcept {
    const Lexeme& lexeme = _filter._lexemes[index];
    const auto size = static_cast<std::size_t>(lexeme.size);
    if (size > _end || _text.empty() || !_reached.DropAbove(std::min(_end - size, _text.size() - 1))) return false;
    const bool isAccepted = _reached.IsOne() ? Accepts(index, _reached.First()) : KeepAccepted(index);
    _reached.Move(size);
    return isAccepted;
}

inline bool FilterMatcher::KeepAccepted(int index) noexcept {
    const Lexeme& lexeme = _filter._lexemes[index];
    const bool isFirstEnough = _filter._lexemes[index + 1].type == Expression::AnyRun;
    if (lexeme.type == Expression::AnyOne) return true;
    if (lexeme.type == Expression::Literal) return KeepLiteral(lexeme, isFirstEnough);
    BlockSearch search(AdmittedBy(index), static_cast<std::size_t>(lexeme.size));
    return _reached.Keep(search, isFirstEnough);
}

inline bool FilterMatcher::KeepLiteral(const Lexeme& literal, bool isFirstEnough) noexcept {
    const std::u32string_view text = TextOf(literal);
    if (text.size() <= ShortLiteralSize) {
        ShortLiteralSearch search(_text, text);
        return _reached.Keep(search, isFirstEnough);
    }
    LongLiteralSearch search(_text, text, _filter._borders + literal.start);
    return _reached.Keep(search, isFirstEnough);
}

inline std::size_t FilterMatcher::Admission::Next(std::size_t from, std::size_t end, bool isAdmitted) const noexcept {
    if (set.rangeCount > 0) {
        const unsigned refused = isAdmitted ? 0 : 15;
        for (; end - from >= 4; from += 4)
            if (const unsigned found = set.HoldsOfFour(text + from) ^ refused; found != 0)
                return from + static_cast<std::size_t>(std::countr_zero(found));
    }
    while (from < end && (*this)(from) != isAdmitted) ++from;
    return from;
}

inline FilterMatcher::Admission FilterMatcher::AdmittedBy(int block) const noexcept {
    return {_text.data(), _filter._sets[block], *this, _filter._lexemes[block]};
}

inline bool FilterMatcher::IsWideAdmitted(const Lexeme& block, char32_t code) const noexcept {
    int i = block.first;
    while (i <= block.last && !_filter._checkCharacterRule(ZELUnicodeChar(code), i)) ++i;
    return (i <= block.last) == (block.type == Expression::Block);
}

int zel::MatchFilter(const TAUnicodeRegularExpression& filter, std::u32string_view text) noexcept {
    return FilterMatcher::Match(filter, text);
}
