// 8-bit text on Linux is UTF-8, whatever the locale.

#include "platform/text.h"

#include "base/utf16.h"

using namespace zel;

std::size_t zel::ToUtf16(std::string_view text, unsigned short* out, std::size_t capacity) noexcept {
    return Utf8ToUtf16(text, out, capacity);
}
