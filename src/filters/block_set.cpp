// Blocks are turned into sets when a filter is compiled, so that matching asks one bit, or compares four characters at
// once, instead of asking one rule after the other. The rules of a class stay with ZELUnicodeChar; the set of each
// class is made from them once.

#include "filters/block_set.h"

#include <algorithm>
#include <bit>
#include <iterator>

using namespace zel;

namespace {

using Predicate = int (ZELUnicodeChar::*)() const noexcept;
constexpr Predicate predicates[] = {
    &ZELUnicodeChar::IsAlnum, &ZELUnicodeChar::IsAlpha, &ZELUnicodeChar::IsCntrl,  &ZELUnicodeChar::IsDigit,
    &ZELUnicodeChar::IsGraph, &ZELUnicodeChar::IsLower, &ZELUnicodeChar::IsPrint,  &ZELUnicodeChar::IsPunct,
    &ZELUnicodeChar::IsSpace, &ZELUnicodeChar::IsUpper, &ZELUnicodeChar::IsXDigit,
};
constexpr int Classes = LastClass - FirstClass + 1;
static_assert(std::size(predicates) == Classes);

struct ClassSets {
    BlockSet sets[Classes] = {};

    ClassSets() noexcept {
        for (int i = 0; i < Classes; ++i)
            for (char32_t code = 0; code < BlockSet::Size; ++code)
                if ((ZELUnicodeChar(code).*predicates[i])() != 0) sets[i].Add(code);
    }
};

}  // namespace

bool zel::IsOfClass(int operation, ZELUnicodeChar character) noexcept {
    if (operation < FirstClass || operation > LastClass) return false;
    return (character.*predicates[operation - FirstClass])() != 0;
}

void BlockSet::AddRange(char32_t first, char32_t last) noexcept {
    hasWideRules = hasWideRules || (first <= last && last >= Size);
    last = std::min<char32_t>(last, Size - 1);
    for (char32_t word = first >> 6; first <= last && word <= last >> 6; ++word) {
        const char32_t low = std::max<char32_t>(first, word << 6) & 63;
        const char32_t high = std::min<char32_t>(last, word << 6 | 63) & 63;
        words[word] |= (~std::uint64_t{0} >> (63 - (high - low))) << low;
    }
}

void BlockSet::AddClass(int operation) noexcept {
    static const ClassSets known;
    for (int i = 0; i < 4; ++i) words[i] |= known.sets[operation - FirstClass].words[i];
}

void BlockSet::Invert() noexcept {
    for (std::uint64_t& word : words) word = ~word;
    holdsWide = !holdsWide;
}

void BlockSet::FindRanges() noexcept {
    rangeCount = 0;
    if (hasWideRules) return;
    const auto withSignTurned = [](char32_t code) { return static_cast<int>(code ^ 0x80000000); };
    int count = 0;
    char32_t end = 0;
    for (char32_t first = Next(0, true); first < Size; first = Next(end, true)) {
        if (count == MaxRanges) return;
        end = Next(first, false);
        ranges[count++] = {withSignTurned(first), withSignTurned(end - 1)};
    }
    if (holdsWide) {
        // The last range goes on, or there is one more.
        if (end != Size && count == MaxRanges) return;
        if (end != Size) ranges[count++].first = withSignTurned(Size);
        ranges[count - 1].last = INT_MAX;
    }
    rangeCount = count;
}

// The first character from `from` on that is held, or is not; Size when there is none.
char32_t BlockSet::Next(char32_t from, bool isHeld) const noexcept {
    while (from < Size) {
        const std::uint64_t rest = (isHeld ? words[from >> 6] : ~words[from >> 6]) >> (from & 63);
        if (rest != 0) return from + static_cast<char32_t>(std::countr_zero(rest));
        from = (from | 63) + 1;
    }
    return Size;
}

bool BlockSet::IsDisjoint(const BlockSet& other) const noexcept {
    std::uint64_t common = 0;
    for (int i = 0; i < 4; ++i) common |= words[i] & other.words[i];
    return common == 0 && !((hasWideRules || holdsWide) && (other.hasWideRules || other.holdsWide));
}
