// Finding the characters of a literal in a candidate, in linear time whatever the two are.
#ifndef REGEX_LITERAL_SEARCH_H
#define REGEX_LITERAL_SEARCH_H

#include <cstddef>
#include <string_view>

#include "regex/reached_positions.h"

// A literal up to this size is compared anew at each place; a longer one needs its borders.
inline constexpr std::size_t ShortLiteralSize = 16;

// For each character the length of the longest proper beginning of `literal` that also ends there.
void FindBorders(std::u32string_view literal, int* borders) noexcept;

// The first of `count` characters at `text` that is `code`; `count` when there is none.
std::size_t FindCharacter(const char32_t* text, std::size_t count, char32_t code) noexcept;

// Both are searches for ReachedPositions::Keep; the literal is not empty and fits behind `to`.
class ShortLiteralSearch {
public:
    ShortLiteralSearch(std::u32string_view text, std::u32string_view literal) noexcept
        : _text(text), _literal(literal) {}
    std::size_t Next(std::size_t from, std::size_t to) const noexcept;

private:
    std::u32string_view _text;
    std::u32string_view _literal;
};

class LongLiteralSearch {
public:
    LongLiteralSearch(std::u32string_view text, std::u32string_view literal, const int* borders) noexcept
        : _text(text), _literal(literal), _borders(borders) {}
    std::size_t Next(std::size_t from, std::size_t to) noexcept;

private:
    std::u32string_view _text;
    std::u32string_view _literal;
    const int* _borders;
    std::size_t _position = 0;  // behind what was read
    std::size_t _matched = 0;   // characters before _position that begin the literal
};

#endif
