// Unicode text: bytes come back, characters are those of the slow decoder, and numbers those of sscanf.
#include "ZELToken.h"
#include "fuzz/input.h"
#include "support/utf8.h"

namespace {

void CheckNumber(const std::string& text, const char* format) {
    // The C library here takes "0x" without a digit for 0, and a number that is too large for its type is undefined.
    const std::size_t x = text.find_first_of("xX");
    if (x != std::string::npos && !std::isxdigit(text.c_str()[x + 1] & 127)) return;
    if (std::count_if(text.begin(), text.end(), [](char c) { return std::isxdigit(c & 127); }) > 7) return;
    unsigned int expected = 99;
    int found = 99;
    const int count = std::sscanf(text.c_str(), format, &expected);
    ASSERT_EQ(ZELUnicodeString(text.c_str()).ConvertToNum(&found, format), count == 1 ? 1 : 0);
    ASSERT_EQ(found, static_cast<int>(expected));
}

void CheckTokens(const std::u32string& text, const std::u32string& separators) {
    ZELToken tokens{ZELUnicodeString(std::u32string_view(text))};
    for (std::size_t at = 0; at != std::u32string::npos;) {
        at = text.find_first_not_of(separators, at);
        const std::size_t end = std::min(text.find_first_of(separators, at), text.size());
        const std::u32string expected = at < text.size() ? text.substr(at, end - at) : U"";
        ASSERT_EQ(tokens.GetNextToken(ZELUnicodeString(std::u32string_view(separators))).View(), expected);
        if (at != std::u32string::npos) at = end < text.size() ? end + 1 : std::u32string::npos;
    }
}

}  // namespace

FUZZ_TARGET(input) {
    const char* const formats[] = {"%d",  "%i",  "%u",   "%x",   "%X",    "%o",  "%3d",
                                   "%4i", " %d", "n=%d", "n %d", "%% %d", "%d%%"};
    const char* const format = input.PickValueInArray(formats);
    const int start = input.Number(-3, 60), length = input.Number(-3, 60);
    const std::string anyFormat = input.Text(16), left = input.Text(300), right = input.Text(300);
    ZELUnicodeString text{std::string_view(left)};
    const std::u32string codes = Decode(left);
    ASSERT_EQ(text.View(), codes);
    ASSERT_EQ(std::memcmp(text.ConvertToChar(), left.c_str(), left.size() + 1), 0);
    const bool isInside = start >= 0 && start < std::ssize(codes) && length >= 0;
    ASSERT_EQ(text.SubString(start, length).View(), isInside ? codes.substr(start, length) : U"");
    text += ZELUnicodeString(std::string_view(right));
    ASSERT_EQ(text.View(), Decode(left + right));
    const ZELUnicodeChar edge = text[0];
    std::u32string stripped(text.View());
    stripped.erase(0, stripped.find_first_not_of(edge.CodePoint()));
    if (text.View().find_first_not_of(edge.CodePoint()) == std::u32string::npos) stripped.clear();
    stripped.resize(stripped.find_last_not_of(edge.CodePoint()) + 1);
    ASSERT_EQ(text.Strip(ZELStripBoth, edge).View(), stripped);
    CheckNumber(right.c_str(), format);
    int number = 0;
    static_cast<void>(text.ConvertToNum(&number, anyFormat.c_str()));
    if (!left.empty() && !right.empty()) CheckTokens(codes, Decode(right).substr(0, 3));
}
