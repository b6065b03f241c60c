// One candidate against one compiled filter.
#ifndef REGEX_FILTER_MATCHER_H
#define REGEX_FILTER_MATCHER_H

#include <cstddef>
#include <string_view>

#include "TAUnicodeRegularExpression.h"
#include "regex/block_set.h"
#include "regex/reached_positions.h"

class FilterMatcher {
public:
    // 1 or 0, and -1 when memory ran out. `text` has lost its blanks.
    static int Match(const TAUnicodeRegularExpression& filter, std::u32string_view text) noexcept;

private:
    using Expression = TAUnicodeRegularExpression;
    using Lexeme = Expression::Lexeme;

    FilterMatcher(const TAUnicodeRegularExpression& filter, std::u32string_view text, std::size_t end) noexcept
        : _filter(filter), _text(text), _end(end), _reached(end) {}

    bool AcceptsTail() const noexcept;
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
        const BlockSet set;  // a copy, so that loops need not look it up anew
        const FilterMatcher& matcher;
        const Lexeme& block;
    };
    Admission AdmittedBy(int block) const noexcept;
    bool IsWideAdmitted(const Lexeme& block, char32_t code) const noexcept;

    const TAUnicodeRegularExpression& _filter;
    const std::u32string_view _text;
    const std::size_t _end;  // where the tail begins in the text
    ReachedPositions _reached;
};

#endif
