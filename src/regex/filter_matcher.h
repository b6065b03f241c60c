// One candidate against one compiled filter.
#ifndef REGEX_FILTER_MATCHER_H
#define REGEX_FILTER_MATCHER_H

#include <cstddef>
#include <string_view>

#include "TAUnicodeRegularExpression.h"
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
    bool IsAdmitted(int index, char32_t code) const noexcept;
    bool IsAdmittedWide(const Lexeme& block, char32_t code) const noexcept;
    std::u32string_view TextOf(const Lexeme& literal) const noexcept;

    const TAUnicodeRegularExpression& _filter;
    const std::u32string_view _text;
    const std::size_t _end;  // where the tail begins in the text
    ReachedPositions _reached;
};

#endif
