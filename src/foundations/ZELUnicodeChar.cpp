// The classes of U+0000 to U+00FF, computed by the compiler from a few ranges. Beside HexDigit and ControlSpace each
// character has exactly one of them.

#include "ZELUnicodeString.h"

using namespace zel;

struct zel::ZELCharacterTable {
    unsigned short classes[0x100] = {};

    constexpr ZELCharacterTable() noexcept {
        using C = ZELUnicodeChar;
        Set(0x00, 0xFF, C::Punctuation);  // what no line below names
        Set(0x00, 0x1F, C::Control);
        Set(0x09, 0x0D, C::Control | C::ControlSpace);
        Set(' ', ' ', C::Blank);
        Set('0', '9', C::Digit | C::HexDigit);
        Set('A', 'Z', C::Upper);
        Set('A', 'F', C::Upper | C::HexDigit);
        Set('a', 'z', C::Lower);
        Set('a', 'f', C::Lower | C::HexDigit);
        Set(0x7F, 0x9F, C::Control);
        Set(0xA0, 0xA0, C::Blank);
        Set(0xAA, 0xAA, C::OtherLetter);
        Set(0xAD, 0xAD, C::Control);
        Set(0xB5, 0xB5, C::Lower);
        Set(0xBA, 0xBA, C::OtherLetter);
        Set(0xC0, 0xDE, C::Upper);
        Set(0xDF, 0xFF, C::Lower);
        Set(0xD7, 0xD7, C::Punctuation);
        Set(0xF7, 0xF7, C::Punctuation);
    }

private:
    constexpr void Set(unsigned int first, unsigned int last, unsigned int value) noexcept {
        for (unsigned int code = first; code <= last; ++code) classes[code] = static_cast<unsigned short>(value);
    }
};

int ZELUnicodeChar::Has(unsigned int classes) const noexcept {
    static constexpr ZELCharacterTable Table;
    return _code < 0x100 && (Table.classes[_code] & classes) != 0 ? 1 : 0;
}
