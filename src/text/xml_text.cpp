// Texts are passed on in runs of ordinary bytes; only what needs another form is looked at by the character.

#include "text/xml_text.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

#include "base/ascii.h"
#include "base/utf8.h"

using namespace zel;

namespace {

struct Range {
    char32_t first;
    char32_t last;
};

// NameStartChar beyond ASCII.
constexpr Range NameStarts[] = {
    {0xC0, 0xD6},     {0xD8, 0xF6},     {0xF8, 0x2FF},    {0x370, 0x37D},   {0x37F, 0x1FFF},  {0x200C, 0x200D},
    {0x2070, 0x218F}, {0x2C00, 0x2FEF}, {0x3001, 0xD7FF}, {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD}, {0x10000, 0xEFFFF},
};
// What NameChar adds beyond ASCII.
constexpr Range NameParts[] = {{0xB7, 0xB7}, {0x300, 0x36F}, {0x203F, 0x2040}};

template <std::size_t Count>
bool IsIn(const Range (&ranges)[Count], char32_t code) noexcept {
    return std::any_of(std::begin(ranges), std::end(ranges),
                       [code](const Range& range) { return code >= range.first && code <= range.last; });
}

bool IsNameStart(char32_t code) noexcept {
    return IsAsciiLetter(code) || code == '_' || code == ':' || IsIn(NameStarts, code);
}

bool IsNamePart(char32_t code) noexcept {
    return IsNameStart(code) || IsAsciiDigit(code) || code == '-' || code == '.' || IsIn(NameParts, code);
}

// The other form of a character, or an empty text where it stands for itself.
std::string_view Escape(char32_t code, XMLPlace place) noexcept {
    constexpr std::string_view Replacement = "\xEF\xBF\xBD";
    const bool inAttribute = place == XMLPlace::AttributeValue;
    switch (code) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '"':
            return "&quot;";
        case '\'':
            return "&apos;";
        case '\t':
            return inAttribute ? "&#9;" : "";
        case '\n':
            return inAttribute ? "&#10;" : "";
        case '\r':
            return "&#13;";
        default:
            return code < ' ' || IsLoneByte(code) || code == 0xFFFE || code == 0xFFFF ? Replacement : "";
    }
}

}  // namespace

ZELString zel::MakeXMLName(std::string_view text) noexcept {
    XMLOutput name;
    if (text.empty()) name.Put("_");
    for (bool isFirst = true; !text.empty(); isFirst = false) {
        const std::string_view before = text;
        const char32_t code = TakeUtf8(text);
        const bool fits = isFirst ? IsNameStart(code) : IsNamePart(code);
        name.Put(fits ? before.substr(0, before.size() - text.size()) : "_");
    }
    return name.Take();
}

XMLOutput& XMLOutput::Put(std::string_view piece) noexcept {
    if (_failed) return *this;
    const auto oldLength = static_cast<std::size_t>(_xml.Length());
    _failed = static_cast<std::size_t>(_xml.Append(piece).Length()) != oldLength + piece.size();
    return *this;
}

XMLOutput& XMLOutput::PutText(std::string_view text, XMLPlace place) noexcept {
    std::string_view run = text;  // from the first character that is not appended yet
    while (!text.empty()) {
        const std::size_t left = text.size();
        const std::string_view escaped = Escape(TakeUtf8(text), place);
        if (escaped.empty()) continue;
        Put(run.substr(0, run.size() - left)).Put(escaped);
        run = text;
    }
    return Put(run);
}

XMLOutput& XMLOutput::PutIndentation(int level) noexcept {
    constexpr std::string_view Blanks = "                                                                ";
    static_assert(Blanks.size() == 2 * 32);
    return Put(Blanks.substr(0, 2 * static_cast<std::size_t>(level)));
}
