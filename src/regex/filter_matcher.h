// One candidate against one compiled filter.
#ifndef REGEX_FILTER_MATCHER_H
#define REGEX_FILTER_MATCHER_H

#include <cstddef>
#include <string_view>

#include "TAUnicodeRegularExpression.h"
#include "regex/latin_set.h"
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

    bool AdmitsTail() const noexcept;
    bool Pass(int index) noexcept;
    bool PassFixed(int index) noexcept;
    bool PassLiteral(const Lexeme& literal, bool isFirstEnough) noexcept;
    // Whether a block admits the character at a position. Holds the set itself: what a loop asks stays at hand.
    struct Admission {
        bool operator()(std::size_t position) const noexcept {
            const char32_t code = text[position];
            return code < LatinSet::Size ? set.Holds(code) : matcher.IsWideAdmitted(block, code);
        }

        const char32_t* text;
        LatinSet set;
        const FilterMatcher& matcher;
        const Lexeme& block;
    };
    Admission AdmittedBy(int block) const noexcept;
    bool IsWideAdmitted(const Lexeme& block, char32_t code) const noexcept;
    std::u32string_view TextOf(const Lexeme& literal) const noexcept;

    const TAUnicodeRegularExpression& _filter;
    const std::u32string_view _text;
    const std::size_t _end;  // where the tail begins in the text
    ReachedPositions _reached;
};

#endif
