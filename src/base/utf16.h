// UTF-8 as UTF-16, for the systems whose 8-bit text is UTF-8.
#ifndef BASE_UTF16_H
#define BASE_UTF16_H

#include <cstddef>
#include <string_view>

namespace zel {

// The rules of ToUtf16, for UTF-8.
std::size_t Utf8ToUtf16(std::string_view text, unsigned short* out, std::size_t capacity) noexcept;

}  // namespace zel

#endif
