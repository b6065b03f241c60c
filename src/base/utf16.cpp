// One character at a time; neutral, so that it is tested on every target.

#include "base/utf16.h"

#include "base/utf8.h"

using namespace zel;

std::size_t zel::Utf8ToUtf16(std::string_view text, unsigned short* out, std::size_t capacity) noexcept {
    std::size_t count = 0;
    while (!text.empty()) {
        char32_t code = TakeUtf8(text);
        if (IsLoneByte(code)) code = ReplacementCharacter;
        const bool isPair = code >= 0x10000;
        if (capacity - count < (isPair ? 2u : 1u)) return 0;
        if (isPair) {
            out[count++] = static_cast<unsigned short>(0xD800 + ((code - 0x10000) >> 10));
            code = 0xDC00 + (code & 0x3FF);
        }
        out[count++] = static_cast<unsigned short>(code);
    }
    return count;
}
