#include "base/utf16.h"

#include "support/testing.h"

TEST(Utf8ToUtf16, ConvertsWithinTheRoom) {
    const std::pair<const char*, std::vector<unsigned short>> rows[] = {
        {"", {}},
        {"a\xC3\xA4z", {'a', 0xE4, 'z'}},
        {"\xE2\x82\xAC\xEF\xBF\xBF", {0x20AC, 0xFFFF}},
        {"\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF", {0xD83D, 0xDE00, 0xDBFF, 0xDFFF}},
        {"\x80x\xC3\xC0\xAF", {0xFFFD, 'x', 0xFFFD, 0xFFFD, 0xFFFD}},
        {"\xED\xA0\x80", {0xFFFD, 0xFFFD, 0xFFFD}},
    };
    for (const auto& [text, expected] : rows)
        for (std::size_t capacity = 0; capacity <= expected.size() + 1; ++capacity) {
            std::vector<unsigned short> out(capacity);
            const std::size_t count = zel::Utf8ToUtf16(text, out.data(), capacity);
            out.resize(count);
            ASSERT_EQ(out, capacity < expected.size() ? std::vector<unsigned short>() : expected) << text;
        }
}
