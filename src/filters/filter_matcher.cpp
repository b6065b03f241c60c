// Carries the set of reachable positions of the candidate through the lexemes: a fixed lexeme moves each position at
// which it is accepted by its size, "*" opens the set up to the end, a repeated block extends it as far as its
// characters go. The filter matches when the end is in the set. The result is that of a search that tries every way in
// turn, but no position of the candidate is tried twice for the same lexeme.
//
// The lexemes after the last one of variable size are the tail. The length of the candidate gives their place. They are
// tested first, since that decides most names, and the set is carried up to their beginning. Next comes the literal
// without which there is no match.
// Only the smallest position counts before "*", so there a search ends with its first find. If a repeated block starts
// from one position and none of its characters can begin the next lexeme, only its end is a useful position.
//
// No fixed lexeme is accepted at the end of the candidate, not even a block with the count 0.

#include "filters/filter_matcher.h"

#include <algorithm>
#include <bit>

#include "filters/filter_program.h"
#include "filters/literal_search.h"
#include "filters/reached_positions.h"

using namespace zel;

namespace {

// A search for ReachedPositions::Keep: `count` characters in a row that the block admits. Characters that are known to
// be admitted are not asked again, so all searches together are linear.
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

// All functions are inline: candidates are short, and a call would cost more than its work.
class FilterMatcher {
public:
    static int Match(const FilterProgram& program, std::u32string_view text) noexcept;

private:
    FilterMatcher(const FilterProgram& program, std::u32string_view text, std::size_t end) noexcept
        : _program(program), _text(text), _end(end) {}

    bool AcceptsTail() const noexcept;
    bool ContainsRequiredLiteral() const noexcept;
    bool Accepts(const FilterLexeme& lexeme, std::size_t position) const noexcept;
    bool Pass(const FilterLexeme& lexeme, ReachedPositions& reached) const noexcept;
    bool PassFixed(const FilterLexeme& lexeme, ReachedPositions& reached) const noexcept;
    bool KeepAccepted(const FilterLexeme& lexeme, ReachedPositions& reached) const noexcept;
    bool KeepLiteral(const FilterLexeme& literal, bool isFirstEnough, ReachedPositions& reached) const noexcept;
    // The characters that a block admits.
    struct Admission {
        bool operator()(std::size_t position) const noexcept {
            const char32_t code = text[position];
            if (code < BlockSet::Size) return set.Holds(code);
            return set.hasWideRules ? program.IsAdmitted(block, ZELUnicodeChar(code)) : set.holdsWide;
        }
        // The first position from `from` on that is admitted, or is not; `end` when there is none before it.
        std::size_t Next(std::size_t from, std::size_t end, bool isAdmitted) const noexcept;

        const char32_t* text;
        const BlockSet& set;
        const FilterProgram& program;
        const FilterLexeme& block;
    };
    Admission AdmittedBy(const FilterLexeme& block) const noexcept {
        return {_text.data(), _program.SetOf(block), _program, block};
    }

    const FilterProgram& _program;
    const std::u32string_view _text;
    const std::size_t _end;  // where the tail begins in the text
};

inline int FilterMatcher::Match(const FilterProgram& program, std::u32string_view text) noexcept {
    const auto tailSize = static_cast<std::size_t>(program.TailSize());
    if (tailSize > text.size() || (program.Tail() == 0 && tailSize < text.size())) return 0;
    const FilterMatcher matcher(program, text, text.size() - tailSize);
    if (!matcher.AcceptsTail() || !matcher.ContainsRequiredLiteral()) return 0;
    if (program.Tail() == 0) return 1;
    ReachedPositions reached(matcher._end);
    for (int i = 0; i < program.Tail(); ++i)
        if (!matcher.Pass(program.Lexeme(i), reached)) return reached.IsOutOfMemory() ? -1 : 0;
    return reached.Holds(matcher._end) ? 1 : 0;
}

inline bool FilterMatcher::AcceptsTail() const noexcept {
    std::size_t position = _end;
    for (int i = _program.Tail(); i < _program.LexemeCount(); ++i) {
        const FilterLexeme& lexeme = _program.Lexeme(i);
        if (position == _text.size() || !Accepts(lexeme, position)) return false;
        position += static_cast<std::size_t>(lexeme.size);
    }
    return true;
}

inline bool FilterMatcher::ContainsRequiredLiteral() const noexcept {
    if (_program.RequiredLiteral() < 0) return true;
    const std::u32string_view literal = _program.TextOf(_program.Lexeme(_program.RequiredLiteral()));
    if (literal.size() > _end) return false;
    const std::size_t count = _end - literal.size() + 1;
    return FindEnds(_text.data(), count, literal.front(), literal.size() - 1, literal.back()) < count;
}

// Whether a fixed lexeme, which fits there, is accepted at the position.
inline bool FilterMatcher::Accepts(const FilterLexeme& lexeme, std::size_t position) const noexcept {
    if (lexeme.type == FilterLexeme::AnyOne) return true;
    const std::size_t end = position + static_cast<std::size_t>(lexeme.size);
    if (lexeme.type != FilterLexeme::Literal) return AdmittedBy(lexeme).Next(position, end, false) == end;
    const char32_t* wanted = _program.TextOf(lexeme).data();
    while (position < end && _text[position] == *wanted) ++position, ++wanted;
    return position == end;
}

inline bool FilterMatcher::Pass(const FilterLexeme& lexeme, ReachedPositions& reached) const noexcept {
    if (lexeme.type == FilterLexeme::AnyRun) {
        reached.Open();
        return true;
    }
    if (lexeme.size >= 0) return PassFixed(lexeme, reached);
    const bool isFromOne = reached.IsOne();
    reached.Extend(AdmittedBy(lexeme));
    if (isFromOne && _program.SetOf(lexeme).endsRun) reached.KeepLast();
    return true;
}

inline bool FilterMatcher::PassFixed(const FilterLexeme& lexeme, ReachedPositions& reached) const noexcept {
    const auto size = static_cast<std::size_t>(lexeme.size);
    if (size > _end || _text.empty() || !reached.DropAbove(std::min(_end - size, _text.size() - 1))) return false;
    const bool isAccepted = reached.IsOne() ? Accepts(lexeme, reached.First()) : KeepAccepted(lexeme, reached);
    reached.Move(size);
    return isAccepted;
}

inline bool FilterMatcher::KeepAccepted(const FilterLexeme& lexeme, ReachedPositions& reached) const noexcept {
    const bool isFirstEnough = (&lexeme + 1)->type == FilterLexeme::AnyRun;
    if (lexeme.type == FilterLexeme::AnyOne) return true;
    if (lexeme.type == FilterLexeme::Literal) return KeepLiteral(lexeme, isFirstEnough, reached);
    BlockSearch search(AdmittedBy(lexeme), static_cast<std::size_t>(lexeme.size));
    return reached.Keep(search, isFirstEnough);
}

inline bool FilterMatcher::KeepLiteral(const FilterLexeme& literal, bool isFirstEnough,
                                       ReachedPositions& reached) const noexcept {
    const std::u32string_view text = _program.TextOf(literal);
    if (text.size() <= ShortLiteralSize) {
        ShortLiteralSearch search(_text, text);
        return reached.Keep(search, isFirstEnough);
    }
    LongLiteralSearch search(_text, text, _program.BordersOf(literal));
    return reached.Keep(search, isFirstEnough);
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

}  // namespace

int zel::MatchFilter(const FilterProgram& program, std::u32string_view text) noexcept {
    return FilterMatcher::Match(program, text);
}
