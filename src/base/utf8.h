// UTF-8 in both directions, without losing a byte that is not UTF-8.
#ifndef BASE_UTF8_H
#define BASE_UTF8_H

#include <cstddef>
#include <string_view>

namespace zel {

// A byte that is not UTF-8 is carried as the code 0xDC00 + byte: codes that no valid UTF-8 yields.
constexpr bool IsLoneByte(char32_t code) noexcept {
    return code >= 0xDC80 && code <= 0xDCFF;
}

constexpr char32_t ReplacementCharacter = 0xFFFD;
constexpr std::size_t MaxUtf8Length = 4;

// The number of bytes that PutUtf8 writes. (The code of a surrogate and that of U+FFFD take three alike.)
constexpr std::size_t Utf8Length(char32_t code) noexcept {
    if (code < 0x80 || IsLoneByte(code)) return 1;
    return code < 0x800 ? 2 : code < 0x10000 || code > 0x10FFFF ? 3 : 4;
}

// Takes one character from the front of `text`, which must not be empty: the code of a well-formed sequence (shortest
// form, no surrogate, at most 10FFFF), or a first byte that begins none as a lone byte.
char32_t TakeUtf8(std::string_view& text) noexcept;

// Writes Utf8Length(code) bytes at `out` and returns their number. A lone byte becomes that byte again; any other code
// that is no Unicode scalar value is written as U+FFFD.
std::size_t PutUtf8(char32_t code, char* out) noexcept;

}  // namespace zel

#endif
