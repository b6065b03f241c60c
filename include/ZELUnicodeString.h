// Unicode text with value semantics, one 32-bit unit per character.
//
// Positions and lengths count characters. The 8-bit form of a string is UTF-8 on both targets. Bytes that are not UTF-8
// are no error: each becomes a character of its own (U+DC80 to U+DCFF, which valid UTF-8 never yields) and comes back
// as the byte that it was.
//
//     ZELUnicodeString name("gr\xC3\xBC\xC3\x9F" "e.txt");
//     if (name[2].IsAlpha()) puts(name.SubString(0, 5));   // 5 characters in 7 bytes
//
// Besides the empty string there is a null string: what a null `const char*` gives, and what comes of copying or
// stripping a null string. It reads as an empty text everywhere; only IsNull and the comparisons tell the two apart.
// A default-constructed string is empty, not null.
//
// A position outside the text gives an empty result or U+0000, never a read outside. When memory runs out, or a text
// would grow past 2^29 - 1 characters, a line that starts with "# Alloc failed in ZELUnicodeString" goes to standard
// output, the operation leaves the text as it was (a constructor: empty), and IsIncomplete() tells so from then on.
// Nothing throws.
// Distinct objects may be used from distinct threads, and one object may be read by several, its 8-bit form included;
// one that is being changed needs a lock of the caller's.
//
// Use ZELString where bytes do: it is smaller and needs no conversion.
#ifndef ZELUNICODESTRING_H
#define ZELUNICODESTRING_H

#include <compare>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "ZELAtomic.h"
#include "ZELExport.h"
#include "ZELString.h"

namespace zel {
struct ZELCharacterTable;
}  // namespace zel

// One Unicode character. Compared by code; classified by a table of its own, free of the locale:
//   ASCII     as in the C locale;
//   U+0080 and U+00FF and what lies between: by Unicode's general category. Letters of every kind are alphabetic, with
//             upper and lower case where the category says so (feminine and masculine ordinal, AA and BA, have none;
//             micro B5 and sharp s DF are lower case); no-break space A0 is a space; the C1 controls, next line 85
//             among them, and the soft hyphen AD are controls; all the rest, signs like D7 and F7, fractions and
//             superscripts included, is punctuation;
//   above     no class at all.
// So every character up to U+00FF is exactly one of letter or digit, punctuation, printing space, and control.
class ZEL_API ZELUnicodeChar {
public:
    constexpr ZELUnicodeChar() noexcept = default;  // U+0000
    // The character of that Latin-1 code: no UTF-8 is decoded here.
    constexpr ZELUnicodeChar(char latin1) noexcept : _code(static_cast<unsigned char>(latin1)) {}
    constexpr explicit ZELUnicodeChar(char32_t code) noexcept : _code(code) {}

    constexpr char32_t CodePoint() const noexcept { return _code; }
    // The Latin-1 code of the character, or the byte that it stands for; '?' when it is neither.
    constexpr operator char() const noexcept {
        const bool isByte = _code < 0x100 || (_code >= 0xDC80 && _code <= 0xDCFF);
        return isByte ? static_cast<char>(static_cast<unsigned char>(_code & 0xFF)) : '?';
    }

    // 1 or 0.
    int IsAlnum() const noexcept { return Has(Upper | Lower | OtherLetter | Digit); }
    int IsAlpha() const noexcept { return Has(Upper | Lower | OtherLetter); }
    int IsCntrl() const noexcept { return Has(Control); }
    int IsDigit() const noexcept { return Has(Digit); }
    int IsGraph() const noexcept { return Has(Upper | Lower | OtherLetter | Digit | Punctuation); }
    int IsLower() const noexcept { return Has(Lower); }
    int IsPrint() const noexcept { return Has(Upper | Lower | OtherLetter | Digit | Punctuation | Blank); }
    int IsPunct() const noexcept { return Has(Punctuation); }
    int IsSpace() const noexcept { return Has(Blank | ControlSpace); }
    int IsUpper() const noexcept { return Has(Upper); }
    int IsXDigit() const noexcept { return Has(HexDigit); }

    friend constexpr bool operator==(ZELUnicodeChar, ZELUnicodeChar) noexcept = default;
    friend constexpr std::strong_ordering operator<=>(ZELUnicodeChar left, ZELUnicodeChar right) noexcept {
        return left._code <=> right._code;
    }
    // Exact matches, since a ZELUnicodeChar converts to char as well.
    friend constexpr bool operator==(ZELUnicodeChar left, char right) noexcept { return left == ZELUnicodeChar(right); }
    friend constexpr bool operator==(ZELUnicodeChar left, char32_t right) noexcept { return left._code == right; }
    friend constexpr std::strong_ordering operator<=>(ZELUnicodeChar left, char right) noexcept {
        return left <=> ZELUnicodeChar(right);
    }
    friend constexpr std::strong_ordering operator<=>(ZELUnicodeChar left, char32_t right) noexcept {
        return left._code <=> right;
    }

private:
    // One of the first seven for every character up to U+00FF, and the last two beside it.
    enum Class : unsigned int {
        Upper = 1,
        Lower = 2,
        OtherLetter = 4,
        Digit = 8,
        Punctuation = 16,
        Blank = 32,  // a space that prints
        Control = 64,
        ControlSpace = 128,
        HexDigit = 256,
    };
    friend struct zel::ZELCharacterTable;
    int Has(unsigned int classes) const noexcept;

    char32_t _code = 0;
};

// Which ends ZELUnicodeString::Strip looks at.
enum ZELStripMode { ZELStripLeading = 0, ZELStripTrailing = 1, ZELStripBoth = 2 };

class ZEL_API ZELUnicodeString {
public:
    // The longest text, in characters, that is kept inside the object.
    static constexpr std::size_t InlineCapacity = 16;

    ZELUnicodeString() noexcept : _short{}, _length(0), _room(0), _isNull(0), _isIncomplete(0) {}
    // From UTF-8; null gives the null string.
    ZELUnicodeString(const char* text) noexcept;
    ZELUnicodeString(const ZELString& text) noexcept : ZELUnicodeString(text.View()) {
        if (text.IsIncomplete()) _isIncomplete = 1;
    }
    explicit ZELUnicodeString(std::string_view text) noexcept : ZELUnicodeString() {
        SetBytes(text.data(), text.size());
    }
    explicit ZELUnicodeString(std::u32string_view text) noexcept : ZELUnicodeString() {
        SetUnits(text.data(), text.size());
    }
    // `count` times the same character; empty when `count` is not positive.
    ZELUnicodeString(const ZELUnicodeChar& character, int count) noexcept;
    ZELUnicodeString(const ZELUnicodeString& other) noexcept;
    ZELUnicodeString(ZELUnicodeString&& other) noexcept;  // leaves an empty string behind
    ~ZELUnicodeString();
    ZELUnicodeString& operator=(const ZELUnicodeString& other) noexcept;
    ZELUnicodeString& operator=(ZELUnicodeString&& other) noexcept;

    // In characters.
    int GetLengthInChar() const noexcept { return static_cast<int>(_length); }
    // 1 for the null string, 0 for every other one, empty or not.
    int IsNull() const noexcept { return static_cast<int>(_isNull); }
    // As ZELString::IsIncomplete().
    bool IsIncomplete() const noexcept { return _isIncomplete != 0; }
    // The character at `position`; U+0000 outside 0 to GetLengthInChar() - 1.
    template <std::integral Position>
    ZELUnicodeChar operator[](Position position) const noexcept {
        // A negative position becomes a huge one.
        const auto index = static_cast<std::uint64_t>(position);
        return ZELUnicodeChar(index < _length ? Units()[index] : U'\0');
    }
    // The characters' codes; valid until the string changes or ends.
    std::u32string_view View() const noexcept { return {Units(), _length}; }

    // The NUL-terminated 8-bit form, owned by the string and valid until it changes or ends; made on first use. Never
    // null: the null string gives the empty text, and so does a string whose form finds no memory. A character that
    // is no Unicode scalar value and stands for no byte is written as U+FFFD.
    operator const char*() const noexcept { return ConvertToChar(); }
    const char* CastToCharPtr() const noexcept { return ConvertToChar(); }
    const char* ConvertToChar() const noexcept;

    // Reads one integer as sscanf would. `format` holds one conversion, %d %i %u %x %X or %o with an optional width,
    // between literal characters, white space and %%. Returns 1 and sets `*value`, or returns 0 and leaves it: when
    // the text does not fit, when `value` or `format` is null, and for every other format. Where the number is too
    // large, %d and %i give the nearest int; the unsigned conversions give the bits of the nearest unsigned one.
    int ConvertToNum(int* value, const char* format) const noexcept;
    // A copy without the characters equal to `c` at the ends that `mode` names.
    ZELUnicodeString Strip(ZELStripMode mode, const ZELUnicodeChar& c) const noexcept;
    // At most `length` characters from `start` on; the empty string when `start` lies outside or `length` is negative.
    ZELUnicodeString SubString(int start, int length) const noexcept;

    // Appends; the string itself serves too. Bytes that become valid UTF-8 by being joined become the character. A null
    // string stays null when a null string is appended to it.
    ZELUnicodeString& operator+=(const ZELUnicodeString& text) noexcept;
    friend ZELUnicodeString operator+(const ZELUnicodeString& left, const ZELUnicodeString& right) noexcept {
        ZELUnicodeString joined(left);
        joined += right;
        return joined;
    }

    // By characters and their codes. A null string equals the null string and a null `const char*` alone, and comes
    // before every other string.
    friend bool operator==(const ZELUnicodeString& left, const ZELUnicodeString& right) noexcept {
        return left._isNull == right._isNull && left.View() == right.View();
    }
    friend std::strong_ordering operator<=>(const ZELUnicodeString& left, const ZELUnicodeString& right) noexcept {
        return left._isNull != right._isNull ? right.IsNull() <=> left.IsNull() : left.View() <=> right.View();
    }
    // Exact matches, since a ZELUnicodeString converts to const char* as well.
    friend bool operator==(const ZELUnicodeString& left, const char* right) noexcept {
        return left == ZELUnicodeString(right);
    }
    friend bool operator==(const ZELUnicodeString& left, const ZELString& right) noexcept {
        return left == ZELUnicodeString(right);
    }

private:
    const char32_t* Units() const noexcept { return _room != 0 ? _long : _short; }
    char32_t* Units() noexcept { return _room != 0 ? _long : _short; }
    // Both fill a fresh string, which stays empty without memory.
    void SetBytes(const char* text, std::size_t size) noexcept;
    void SetUnits(const char32_t* units, std::size_t length) noexcept;
    ZELUnicodeString Part(std::u32string_view units) const noexcept {
        ZELUnicodeString part(units);
        part._isIncomplete |= _isIncomplete;
        return part;
    }
    char32_t* MakeRoom(std::size_t length) noexcept;
    void Take(ZELUnicodeString& other) noexcept;
    void DropBytes() noexcept;
    void Recompose(std::size_t joint) noexcept;

    union {
        char32_t _short[InlineCapacity];
        char32_t* _long;  // a heap block of _room units
    };
    std::uint32_t _length;
    std::uint32_t _room : 30;  // units at _long; 0 while the text is inside the object
    std::uint32_t _isNull : 1;
    std::uint32_t _isIncomplete : 1;
    mutable ZELAtomic<char*> _bytes{nullptr};  // the 8-bit form, a heap block; null before its first use
};

#endif
