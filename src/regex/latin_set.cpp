// Blocks are turned into sets when a filter is compiled, so that matching asks one bit instead of one rule after the
// other. The rules of a class stay with ZELUnicodeChar; the set of each class is made from them once.

#include "regex/latin_set.h"

#include <algorithm>

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
    LatinSet sets[Classes] = {};

    ClassSets() noexcept {
        for (int i = 0; i < Classes; ++i)
            for (char32_t code = 0; code < LatinSet::Size; ++code)
                if ((ZELUnicodeChar(code).*predicates[i])() != 0) sets[i].Add(code);
    }
};

}  // namespace

bool IsOfClass(int operation, ZELUnicodeChar character) noexcept {
    if (operation < FirstClass || operation > LastClass) return false;
    return (character.*predicates[operation - FirstClass])() != 0;
}

void LatinSet::AddRange(char32_t first, char32_t last) noexcept {
    last = std::min<char32_t>(last, Size - 1);
    for (char32_t word = first >> 6; first <= last && word <= last >> 6; ++word) {
        const char32_t low = std::max<char32_t>(first, word << 6) & 63;
        const char32_t high = std::min<char32_t>(last, word << 6 | 63) & 63;
        words[word] |= (~std::uint64_t{0} >> (63 - (high - low))) << low;
    }
}

void LatinSet::AddClass(int operation) noexcept {
    static const ClassSets known;
    for (int i = 0; i < 4; ++i) words[i] |= known.sets[operation - FirstClass].words[i];
}
