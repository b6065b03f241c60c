// ZELUnicodeString::ConvertToNum: one integer by a format in the manner of scanf.
//
// The caller's format never reaches the C library: a second conversion there would write through a pointer that nobody
// passed, and a number too large for its type is undefined. A format is parsed here in full before a character of the
// text is looked at, so a format that is not understood never converts anything.

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "ZELUnicodeString.h"
#include "base/ascii.h"

using namespace zel;

namespace {

constexpr std::size_t npos = std::u32string_view::npos;

struct Format {
    std::u32string_view before;  // literals, white space and %% in front of the conversion
    std::size_t width = npos;
    char32_t conversion = 0;
};

bool IsWhite(char32_t code) noexcept {
    return code == ' ' || (code >= 9 && code <= 13);
}

void SkipWhite(std::u32string_view& text) noexcept {
    while (!text.empty() && IsWhite(text.front())) text.remove_prefix(1);
}

// The position of the first % that is not one of a pair; npos when there is none.
std::size_t FindConversion(std::u32string_view format) noexcept {
    std::size_t at = format.find(U'%');
    while (at != npos && at + 1 < format.size() && format[at + 1] == '%') at = format.find(U'%', at + 2);
    return at;
}

// False when the format is none of those that are known.
bool ParseFormat(std::u32string_view text, Format& format) noexcept {
    const std::size_t start = FindConversion(text);
    if (start == npos) return false;
    format.before = text.substr(0, start);
    std::size_t at = start + 1;
    if (at < text.size() && text[at] != '0' && IsAsciiDigit(text[at])) {
        format.width = 0;
        for (; at < text.size() && IsAsciiDigit(text[at]); ++at)
            format.width = std::min<std::size_t>(format.width * 10 + (text[at] - '0'), INT_MAX);
    }
    if (at == text.size()) return false;
    format.conversion = text[at];
    const bool known = std::u32string_view(U"diuxXo").find(format.conversion) != npos;
    return known && FindConversion(text.substr(at + 1)) == npos;
}

// Takes from `text` what stands in front of the number.
bool MatchLiterals(std::u32string_view& text, std::u32string_view literals) noexcept {
    for (std::size_t i = 0; i < literals.size(); ++i) {
        if (IsWhite(literals[i])) {
            SkipWhite(text);
            continue;
        }
        if (literals[i] == '%') {
            SkipWhite(text);
            ++i;  // the second of the pair
        }
        if (text.empty() || text.front() != literals[i]) return false;
        text.remove_prefix(1);
    }
    return true;
}

unsigned int DigitValue(char32_t code) noexcept {
    if (IsAsciiDigit(code)) return code - '0';
    const char32_t letter = ToAsciiLower(code);
    return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : UINT_MAX;
}

// The base that `conversion` reads in; takes a prefix 0x from `text` where it belongs to the number.
unsigned int TakeBase(std::u32string_view& text, char32_t conversion) noexcept {
    const bool mayBeHex = conversion == 'x' || conversion == 'X' || conversion == 'i';
    if (mayBeHex && text.size() > 1 && text[0] == '0' && ToAsciiLower(text[1]) == 'x') {
        text.remove_prefix(2);
        return 16;
    }
    if (conversion == 'i') return !text.empty() && text[0] == '0' ? 8 : 10;
    if (conversion == 'o') return 8;
    return conversion == 'x' || conversion == 'X' ? 16 : 10;
}

int Clamp(std::uint64_t magnitude, bool negative, bool isSigned) noexcept {
    if (!isSigned) {
        if (magnitude > UINT_MAX) return static_cast<int>(UINT_MAX);
        const unsigned int bits = static_cast<unsigned int>(magnitude);
        return static_cast<int>(negative ? 0 - bits : bits);
    }
    const std::int64_t limit = negative ? std::int64_t{INT_MAX} + 1 : INT_MAX;
    const std::int64_t number = std::min(static_cast<std::int64_t>(magnitude), limit);
    return static_cast<int>(negative ? -number : number);
}

}  // namespace

int ZELUnicodeString::ConvertToNum(int* value, const char* format) const noexcept {
    if (value == nullptr) return 0;
    const ZELUnicodeString formatText(format);
    std::u32string_view text = View();
    Format parsed;
    if (!ParseFormat(formatText.View(), parsed) || !MatchLiterals(text, parsed.before)) return 0;
    SkipWhite(text);
    text = text.substr(0, parsed.width);
    const bool negative = !text.empty() && text[0] == '-';
    if (negative || (!text.empty() && text[0] == '+')) text.remove_prefix(1);
    const unsigned int base = TakeBase(text, parsed.conversion);

    if (text.empty() || DigitValue(text[0]) >= base) return 0;
    // Stops growing far above every int, far below the end of its own type.
    constexpr std::uint64_t Enough = std::uint64_t{1} << 40;
    std::uint64_t magnitude = 0;
    for (; !text.empty() && DigitValue(text[0]) < base; text.remove_prefix(1))
        magnitude = std::min(magnitude * base + DigitValue(text[0]), Enough);
    const bool isSigned = parsed.conversion == 'd' || parsed.conversion == 'i';
    *value = Clamp(magnitude, negative, isSigned);
    return 1;
}
