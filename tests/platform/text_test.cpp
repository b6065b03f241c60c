#include "platform/text.h"

#include <gtest/gtest.h>

#include <string_view>
#include <vector>

#include "platform/utf16.h"

TEST(Utf8ToUtf16, ConvertsWithinTheRoom) {
    const struct {
        std::string_view text;
        std::vector<unsigned short> expected;
    } rows[] = {
        {"", {}},
        {"a\xC3\xA4z", {'a', 0xE4, 'z'}},
        {"\xE2\x82\xAC\xEF\xBF\xBF", {0x20AC, 0xFFFF}},
        {"\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF", {0xD83D, 0xDE00, 0xDBFF, 0xDFFF}},
        {"\x80x\xC3\xC0\xAF", {0xFFFD, 'x', 0xFFFD, 0xFFFD, 0xFFFD}},
        {"\xED\xA0\x80", {0xFFFD, 0xFFFD, 0xFFFD}},
    };
    for (const auto& row : rows)
        for (std::size_t capacity = 0; capacity <= row.expected.size() + 1; ++capacity) {
            std::vector<unsigned short> out(capacity);
            const std::size_t count = Utf8ToUtf16(row.text, out.data(), capacity);
            ASSERT_EQ(count, capacity < row.expected.size() ? 0 : row.expected.size()) << row.text;
            out.resize(count);
            if (count != 0) {
                ASSERT_EQ(out, row.expected) << row.text;
            }
        }
}

TEST(SystemText, BecomesUtf16OrDoesNotFit) {
    unsigned short out[4] = {};
    EXPECT_EQ(platform::ToUtf16("a~b", out, 4), 3u);
    EXPECT_TRUE(out[0] == 'a' && out[1] == '~' && out[2] == 'b');
    EXPECT_EQ(platform::ToUtf16("", out, 4), 0u);
    EXPECT_EQ(platform::ToUtf16("abc", out, 2), 0u);
    EXPECT_EQ(platform::ToUtf16("abc", out, 0), 0u);
}
