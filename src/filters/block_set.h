// What is known of a block before any candidate is: the set of its characters, in the two forms that matching asks, and
// the classes that it may name.
#ifndef FILTERS_BLOCK_SET_H
#define FILTERS_BLOCK_SET_H

#include <climits>
#include <cstdint>

#include "ZELUnicodeString.h"
#include "base/bytes16.h"

namespace zel {

// The first and the last operation that stands for a class; those between follow the order of the predicates.
inline constexpr int FirstClass = 2;
inline constexpr int LastClass = 12;

// Whether `character` is of the class; false for every number that is none.
bool IsOfClass(int operation, ZELUnicodeChar character) noexcept;

// One bit for each character up to U+00FF. Above, a set holds everything or nothing, unless it has wide rules: then
// only the rules tell. A set without wide rules that consists of a few ranges keeps these as well, since they are
// compared with four characters at once.
struct BlockSet {
    static constexpr char32_t Size = 0x100;
    static constexpr int MaxRanges = 4;

    std::uint64_t words[4] = {};
    bool hasWideRules = false;
    bool holdsWide = false;  // without wide rules
    bool endsRun = false;    // no character of this block can begin what stands behind it in the filter
    int rangeCount = 0;      // 0 where there are too many
    struct Range {
        int first;  // both with the sign bit turned, so that comparing them as numbers with a sign compares the codes
        int last;
    } ranges[MaxRanges];

    bool Holds(char32_t code) const noexcept { return (words[code >> 6] >> (code & 63) & 1) != 0; }
    void Add(char32_t code) noexcept { words[code >> 6] |= std::uint64_t{1} << (code & 63); }
    // Nothing when `first` is above `last`.
    void AddRange(char32_t first, char32_t last) noexcept;
    void AddClass(int operation) noexcept;
    void Invert() noexcept;
    // To be called when the set is complete.
    void FindRanges() noexcept;
    // False where it is not certain.
    bool IsDisjoint(const BlockSet& other) const noexcept;

    char32_t Next(char32_t from, bool isHeld) const noexcept;
    // One bit for each of the four characters at `text` that is in one of the ranges.
    unsigned HoldsOfFour(const char32_t* text) const noexcept;
};

inline unsigned BlockSet::HoldsOfFour(const char32_t* text) const noexcept {
    const Bytes16 sign = RepeatWord(0x80000000);
    const Bytes16 codes = LoadBytes(text) ^ sign;
    Bytes16 outside = RepeatByte(-1);
    for (int i = 0; i < rangeCount; ++i) {
        const Bytes16 under = LessWords(codes, RepeatWord(static_cast<std::uint32_t>(ranges[i].first)));
        const Bytes16 over = LessWords(RepeatWord(static_cast<std::uint32_t>(ranges[i].last)), codes);
        outside = outside & (under | over);
    }
    return WordMask(outside) ^ 15;
}

}  // namespace zel

#endif
