// 8-bit text of the system as UTF-16.
#ifndef PLATFORM_TEXT_H
#define PLATFORM_TEXT_H

#include <cstddef>
#include <string_view>

namespace zel {

// Converts text of at most 2^31 - 1 bytes in the system's 8-bit encoding (Windows: the ANSI code page; Linux: UTF-8, a
// byte that is none becoming U+FFFD) to at most `capacity` units at `out`, without a terminator. The number of units; 0
// when the text is empty or the room does not suffice, and then what `out` holds is not defined.
std::size_t ToUtf16(std::string_view text, unsigned short* out, std::size_t capacity) noexcept;

}  // namespace zel

#endif
