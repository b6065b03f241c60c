// 8-bit text on Linux is UTF-8, whatever the locale.

#include "platform/text.h"

#include "base/utf16.h"

std::size_t platform::ToUtf16(std::string_view text, unsigned short* out, std::size_t capacity) noexcept {
    return Utf8ToUtf16(text, out, capacity);
}
