// UTF-8 by the definition: a sequence is well-formed when it is what its code is written as. Slow and independent of
// the library's decoder.
#ifndef TESTS_SUPPORT_UTF8_H
#define TESTS_SUPPORT_UTF8_H

#include <string>

inline std::string WriteCode(unsigned int code) {
    if (code < 0x80) return {char(code)};
    if (code < 0x800) return {char(0xC0 | code >> 6), char(0x80 | (code & 63))};
    if (code < 0x10000) return {char(0xE0 | code >> 12), char(0x80 | (code >> 6 & 63)), char(0x80 | (code & 63))};
    return {char(0xF0 | code >> 18), char(0x80 | (code >> 12 & 63)), char(0x80 | (code >> 6 & 63)),
            char(0x80 | (code & 63))};
}

inline bool IsScalar(unsigned int code) {
    return code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
}

// A byte that is no part of a character is U+DC00 and the byte.
inline std::u32string Decode(const std::string& bytes) {
    std::u32string codes;
    for (std::size_t at = 0; at < bytes.size();) {
        std::size_t length = 4;
        unsigned int code = 0;
        for (; length > 0; --length) {
            const std::string piece = bytes.substr(at, length);
            code = static_cast<unsigned char>(piece[0]) & (length == 1 ? 0x7F : 0xFF >> (length + 1));
            for (std::size_t i = 1; i < piece.size(); ++i) code = code << 6 | (piece[i] & 63);
            if (IsScalar(code) && piece.size() == length && WriteCode(code) == piece) break;
        }
        codes += length > 0 ? code : 0xDC00 + static_cast<unsigned char>(bytes[at]);
        at += length > 0 ? length : 1;
    }
    return codes;
}

#endif
