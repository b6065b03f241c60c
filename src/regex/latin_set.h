// Sets of the characters up to U+00FF, one bit each, and the character classes that a filter knows.
#ifndef REGEX_LATIN_SET_H
#define REGEX_LATIN_SET_H

#include <cstdint>

#include "ZELUnicodeString.h"

// The first and the last operation that stands for a class; those between follow the order of the predicates.
inline constexpr int FirstClass = 2;
inline constexpr int LastClass = 12;

// Whether `character` is of the class; false for every number that is none.
bool IsOfClass(int operation, ZELUnicodeChar character) noexcept;

struct LatinSet {
    static constexpr char32_t Size = 0x100;

    std::uint64_t words[4];

    bool Holds(char32_t code) const noexcept { return (words[code >> 6] >> (code & 63) & 1) != 0; }
    void Add(char32_t code) noexcept { words[code >> 6] |= std::uint64_t{1} << (code & 63); }
    // What lies outside the set's range is left out; nothing when `first` is above `last`.
    void AddRange(char32_t first, char32_t last) noexcept;
    void AddClass(int operation) noexcept;
    void Invert() noexcept {
        for (std::uint64_t& word : words) word = ~word;
    }
};

#endif
