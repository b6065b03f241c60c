// One character at a time. What may follow a lead byte is Table 3-7 of the Unicode Standard, "Well-Formed UTF-8 Byte
// Sequences": only the second byte has bounds that depend on the first, and they keep out overlong forms, surrogates
// and codes above 10FFFF. Callers pass ASCII by on their own where speed counts.

#include "base/utf8.h"

using namespace zel;

namespace {

// The number of bytes that a sequence with this first byte has, 0 when none begins so; and the bounds of the second.
struct Lead {
    unsigned int length;
    unsigned int low;
    unsigned int high;
};

Lead ReadLead(unsigned char byte) noexcept {
    if (byte < 0x80) return {1, 0, 0};
    if (byte < 0xC2 || byte > 0xF4) return {0, 0, 0};
    if (byte < 0xE0) return {2, 0x80, 0xBF};
    if (byte < 0xF0) return {3, byte == 0xE0 ? 0xA0u : 0x80u, byte == 0xED ? 0x9Fu : 0xBFu};
    return {4, byte == 0xF0 ? 0x90u : 0x80u, byte == 0xF4 ? 0x8Fu : 0xBFu};
}

}  // namespace

char32_t zel::TakeUtf8(std::string_view& text) noexcept {
    const auto byte = [&text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char first = byte(0);
    const Lead lead = ReadLead(first);
    bool valid = lead.length > 0 && lead.length <= text.size();
    if (valid && lead.length > 1) valid = byte(1) >= lead.low && byte(1) <= lead.high;
    for (std::size_t i = 2; valid && i < lead.length; ++i) valid = (byte(i) & 0xC0) == 0x80;
    if (!valid) {
        text.remove_prefix(1);
        return char32_t{0xDC00} + first;
    }
    // The lead byte's own bits: 7, 5, 4 or 3 of them.
    char32_t code = lead.length == 1 ? first : first & (0xFFu >> (lead.length + 1));
    for (std::size_t i = 1; i < lead.length; ++i) code = (code << 6) | (byte(i) & 0x3Fu);
    text.remove_prefix(lead.length);
    return code;
}

std::size_t zel::PutUtf8(char32_t code, char* out) noexcept {
    const auto put = [out](std::size_t i, char32_t byte) {
        out[i] = static_cast<char>(static_cast<unsigned char>(byte));
    };
    if (code < 0x80 || IsLoneByte(code)) {
        put(0, code & 0xFF);
        return 1;
    }
    if (code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) code = ReplacementCharacter;
    const std::size_t length = Utf8Length(code);
    char32_t rest = code;
    for (std::size_t i = length - 1; i > 0; --i, rest >>= 6) put(i, 0x80 | (rest & 0x3F));
    put(0, ((0xF00u >> length) & 0xFF) | rest);
    return length;
}
