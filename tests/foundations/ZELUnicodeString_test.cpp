#include "ZELUnicodeString.h"

#include "support/testing.h"
#include "support/utf8.h"

namespace {

// Random text in which lead bytes, continuations and whole characters meet in all ways.
std::string RandomBytes(std::mt19937& random) {
    static const char* const pieces[] = {"a",    "\xC3", "\xA9", "\xE2\x82", "\xAC",     "\xED\xA0\x80", "\xF0\x9F",
                                         "\x98", "\x80", "\xFF", "\xC0\xAF", "\xF4\x90", "\xE0\x9F",     "xyz"};
    std::string text;
    for (auto count = random() % 12; count > 0; --count) text += pieces[random() % std::size(pieces)];
    return text;
}

}  // namespace

TEST(ZELUnicodeString, KeepsEveryByte) {
    std::mt19937 random(1);
    for (int round = 0; round < 20000; ++round) {
        const std::string left = RandomBytes(random), right = RandomBytes(random);
        ZELUnicodeString text(left.c_str());
        ASSERT_EQ(text.View(), Decode(left));
        ASSERT_STREQ(text, left.c_str());
        text += ZELUnicodeString(right.c_str());
        ASSERT_STREQ(text, (left + right).c_str());
        ASSERT_EQ(text.View(), Decode(left + right));
    }
}

TEST(ZELUnicodeString, HoldsEveryCharacter) {
    for (char32_t code = 1; code < 0x110010; ++code) {
        if (code > 0x3000 && code < 0x10FF00 && code % 251 != 0 && (code & 0xFF00) != 0xDC00) continue;
        const ZELUnicodeString text(ZELUnicodeChar(code), 3);
        const bool lone = code >= 0xDC80 && code <= 0xDCFF;
        const std::string one = lone ? std::string(1, char(code & 0xFF)) : WriteCode(IsScalar(code) ? code : 0xFFFD);
        ASSERT_EQ(text.CastToCharPtr(), one + one + one) << std::hex << unsigned(code);
        ASSERT_EQ(ZELUnicodeString(text.ConvertToChar()) == text, IsScalar(code) || lone);
        ASSERT_EQ(char(text[2]), code < 0x100 || lone ? char(code & 0xFF) : '?');
    }
    for (const int count : {0, -1, INT_MIN}) EXPECT_EQ(ZELUnicodeString('x', count), "");
}

TEST(ZELUnicodeString, GrowsAndChangesHandsAtEveryLength) {
    std::u32string model;
    ZELUnicodeString text;
    for (int length = 0; length < 70; ++length) {
        ZELUnicodeString copy(text);
        ASSERT_STREQ(copy, std::string(model.begin(), model.end()).c_str());
        ZELUnicodeString moved(std::move(copy));
        copy = moved;
        copy += copy;
        ASSERT_EQ(copy.View(), model + model);
        copy = ZELUnicodeString("short");
        copy = std::move(moved);
        ASSERT_TRUE(copy == text && moved == "");  // NOLINT: what a move leaves behind
        for (const int start : {INT_MIN, -1, 0, 1, length - 1, length, INT_MAX}) {
            for (const int count : {INT_MIN, -1, 0, 1, length, INT_MAX}) {
                const bool inside = start >= 0 && start < length && count >= 0;
                ASSERT_EQ(text.SubString(start, count).View(), inside ? model.substr(start, count) : U"");
            }
            ASSERT_EQ(text[start].CodePoint(), start >= 0 && start < length ? model[start] : U'\0');
        }
        model += char32_t('a' + length % 26);
        text += ZELUnicodeString(model.substr(length));
    }
}

TEST(ZELUnicodeString, TellsNullFromEmpty) {
    const ZELUnicodeString null(static_cast<const char*>(nullptr)), empty;
    EXPECT_TRUE(null.IsNull() && !empty.IsNull() && !ZELUnicodeString("").IsNull());
    EXPECT_TRUE(null == ZELUnicodeString(null) && null == nullptr && null != empty && null != "" && null < empty);
    EXPECT_TRUE(empty == "" && empty != nullptr && empty == ZELString());
    EXPECT_STREQ(null, "");
    for (const ZELStripMode mode : {ZELStripLeading, ZELStripTrailing, ZELStripBoth})
        EXPECT_TRUE(null.Strip(mode, ' ').IsNull() && !empty.Strip(mode, ' ').IsNull());
    EXPECT_TRUE(!null.SubString(0, 1).IsNull() && (null + null).IsNull() && !(null + empty).IsNull() &&
                null + "a" == "a");
    ZELUnicodeString text("something");
    text = null;
    EXPECT_TRUE(text.IsNull() && text.GetLengthInChar() == 0 && !(text = "").IsNull());
}

TEST(ZELUnicodeString, StripsTheEndsThatAreNamed) {
    const char* const rows[][4] = {
        {"  a b ", "a b ", "  a b", "a b"}, {"   ", "", "", ""}, {" \xC3", "\xC3", " \xC3", "\xC3"}};
    for (const auto& row : rows)
        for (int mode = 0; mode < 3; ++mode)
            EXPECT_EQ(ZELUnicodeString(row[0]).Strip(static_cast<ZELStripMode>(mode), ' '), row[1 + mode]) << row[0];
    EXPECT_EQ(ZELUnicodeString("\xC3\xA9x\xC3\xA9").Strip(ZELStripBoth, ZELUnicodeChar('\xE9')), "x");
}

TEST(ZELUnicodeString, ReadsNumbersLikeScanf) {
    const char* const texts[] = {"",    "0",     "12",      " -12",  "+7x",        "0x1F",        "0X1f",
                                 "017", "08",    "x",       "- 5",   "-",          "1 2",         "a12",
                                 "5%",  "% 5",   "abc",     "-0",    "2147483647", "-2147483648", "n=3",
                                 "n 3", "\t\n9", "1234567", "-0x10", "4294967295"};
    const char* const formats[] = {"%d",  "%i",  "%u",   "%x",   "%X",    "%o",  "%3d",
                                   "%4i", " %d", "n=%d", "n %d", "%% %d", "%d%%"};
    for (const char* const format : formats)
        for (const char* const text : texts) {
            // What is too large for its type is undefined there.
            if (std::strlen(text) >= 10 && (std::strpbrk(format, "xX") || text[0] == '4')) continue;
            unsigned int expected = 99;
            int found = 99;
            const int count = std::sscanf(text, format, &expected);
            EXPECT_EQ(ZELUnicodeString(text).ConvertToNum(&found, format), count == 1 ? 1 : 0) << text << format;
            EXPECT_EQ(found, static_cast<int>(expected)) << text << " by " << format;
        }
}

TEST(ZELUnicodeString, RefusesFormatsAndClampsNumbers) {
    int found = 99;
    for (const char* const format : {"", "%", "d", "%%", "%%d", "%0d", "%s", "%n", "%c", "%ld", "%*d", "%d %d", "%d%n",
                                     "%5", "%d%", "%1$d", static_cast<const char*>(nullptr)})
        EXPECT_EQ(ZELUnicodeString("5 5").ConvertToNum(&found, format), 0) << (format ? format : "null");
    EXPECT_EQ(ZELUnicodeString("0x").ConvertToNum(&found, "%i") + ZELUnicodeString("5").ConvertToNum(nullptr, "%d"), 0);
    EXPECT_EQ(found, 99);
    const std::tuple<const char*, const char*, int> rows[] = {{"2147483648", "%d", INT_MAX},
                                                              {"-99999999999999999999999", "%i", INT_MIN},
                                                              {"-1", "%u", -1},
                                                              {"99999999999999999999999", "%u", -1},
                                                              {"FFFFFFFFFFFFF", "%x", -1},
                                                              {"123", "%99999999999999999999d", 123}};
    for (const auto& [text, format, number] : rows) {
        EXPECT_EQ(ZELUnicodeString(text).ConvertToNum(&found, format), 1);
        EXPECT_EQ(found, number) << text;
    }
}

TEST(ZELUnicodeString, MakesItsBytesOnceForAllReaders) {
    for (int round = 0; round < 200; ++round) {
        const ZELUnicodeString text("gr\xC3\xBCn");
        const char* seen = nullptr;
        std::thread other([&] { seen = text.CastToCharPtr(); });
        const char* const mine = text.CastToCharPtr();
        other.join();
        ASSERT_EQ(seen, mine);
        ASSERT_STREQ(seen, "gr\xC3\xBCn");
    }
}

TEST(ZELUnicodeChar, HasClassesOfItsOwn) {
    // U+0080 to U+00FF: control, space, punctuation and signs and numbers, upper and lower case, other letters.
    const std::string latin1 = std::string(32, 'c') + "spppppppppLppcppppppplppppLppppp" + std::string(23, 'U') + "p" +
                               std::string(7, 'U') + std::string(24, 'l') + "p" + std::string(8, 'l');
    for (int code = 0; code < 256; ++code) {
        const ZELUnicodeChar c = static_cast<char>(code);
        const int found[] = {c.IsAlnum(), c.IsAlpha(), c.IsCntrl(), c.IsDigit(), c.IsGraph(), c.IsLower(),
                             c.IsPrint(), c.IsPunct(), c.IsSpace(), c.IsUpper(), c.IsXDigit()};
        int (*const inC[])(int) = {std::isalnum, std::isalpha, std::iscntrl, std::isdigit, std::isgraph, std::islower,
                                   std::isprint, std::ispunct, std::isspace, std::isupper, std::isxdigit};
        // The kinds that belong to each of these classes.
        const char* const kinds[] = {"UlL", "UlL", "c", "", "UlLp", "l", "UlLps", "p", "s", "U", ""};
        for (std::size_t i = 0; i < std::size(found); ++i) {
            const bool inKind = code >= 128 && std::strchr(kinds[i], latin1[code - 128]) != nullptr;
            EXPECT_EQ(found[i], inKind || (code < 128 && inC[i](code) != 0)) << code << " " << i;
        }
    }
    for (const char32_t code : {0x100u, 0x130u, 0x2028u, 0x661u, 0xDCFFu, 0x10041u, 0xFFFFFFFFu}) {
        const ZELUnicodeChar c(code);
        EXPECT_EQ(c.IsAlnum() + c.IsCntrl() + c.IsGraph() + c.IsPrint() + c.IsSpace() + c.IsXDigit(), 0);
    }
    EXPECT_TRUE(ZELUnicodeChar('\xE9') > 'z' && ZELUnicodeChar('a') == 'a' && U'\xE9' == ZELUnicodeChar('\xE9'));
}
