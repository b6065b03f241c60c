// Classes and case of ASCII characters. The locale of the process has no influence; other bytes belong to no class and
// are never changed.
#ifndef BASE_ASCII_H
#define BASE_ASCII_H

#include <cstddef>
#include <string_view>

namespace zel {

// Both serve char, char32_t and int alike.
template <class Character>
constexpr bool IsAsciiUpper(Character c) noexcept {
    return c >= 'A' && c <= 'Z';
}
template <class Character>
constexpr bool IsAsciiLower(Character c) noexcept {
    return c >= 'a' && c <= 'z';
}
template <class Character>
constexpr bool IsAsciiLetter(Character c) noexcept {
    return IsAsciiUpper(c) || IsAsciiLower(c);
}
template <class Character>
constexpr bool IsAsciiDigit(Character c) noexcept {
    return c >= '0' && c <= '9';
}
template <class Character>
constexpr bool IsAsciiAlnum(Character c) noexcept {
    return IsAsciiLetter(c) || IsAsciiDigit(c);
}
template <class Character>
constexpr Character ToAsciiLower(Character c) noexcept {
    return IsAsciiUpper(c) ? static_cast<Character>(c + ('a' - 'A')) : c;
}
template <class Character>
constexpr Character ToAsciiUpper(Character c) noexcept {
    return IsAsciiLower(c) ? static_cast<Character>(c - ('a' - 'A')) : c;
}

// Whether two texts are equal when the case of ASCII letters is ignored.
constexpr bool EqualsIgnoringCase(std::string_view left, std::string_view right) noexcept {
    if (left.size() != right.size()) return false;
    for (std::size_t i = 0; i < left.size(); ++i)
        if (ToAsciiLower(left[i]) != ToAsciiLower(right[i])) return false;
    return true;
}

}  // namespace zel

#endif
