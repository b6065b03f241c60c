// One rule for all systems, the narrowest: a tree that one courier takes, every other takes too, and no name has a
// second meaning anywhere. That leaves out a few names that one system alone would keep, such as "aux.c" and "a:b".
// Bytes above 0x7F pass as they are.

#include "names.h"

#include <algorithm>

namespace {

// As one part of a path may have on the systems that there are.
constexpr std::size_t LongestPart = 255;

char Upper(char character) {
    return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
}

bool EqualsUpper(std::string_view text, std::string_view upper) {
    return std::equal(text.begin(), text.end(), upper.begin(), upper.end(),
                      [](char one, char other) { return Upper(one) == other; });
}

// "CON", "nul.txt", "Com1 .log": Windows opens a device whatever stands behind the first dot. The digits may be
// superscript, in the forms of either encoding.
bool IsDevice(std::string_view part) {
    part = part.substr(0, part.find('.'));
    while (part.ends_with(' ')) part.remove_suffix(1);
    for (const char* const device : {"CON", "PRN", "AUX", "NUL", "CONIN$", "CONOUT$", "CLOCK$"})
        if (EqualsUpper(part, device)) return true;
    if (!EqualsUpper(part.substr(0, 3), "COM") && !EqualsUpper(part.substr(0, 3), "LPT")) return false;
    part.remove_prefix(3);
    if (part.starts_with('\xC2')) part.remove_prefix(1);
    constexpr std::string_view digits = "0123456789\xB2\xB3\xB9";
    return part.size() == 1 && digits.find(part[0]) != digits.npos;
}

const char* PartProblem(std::string_view part) {
    if (part.empty()) return "begins or ends with a separator, or has an empty part";
    if (part == "." || part == "..") return "leads through . or ..";
    if (part.size() > LongestPart) return "has a part of more than 255 bytes";
    if (part.ends_with('.') || part.ends_with(' ')) return "has a part that ends with a dot or a blank";
    return IsDevice(part) ? "has a part that is the name of a device" : "";
}

}  // namespace

ZELString NameProblem(std::string_view name) {
    if (name.empty()) return "is empty";
    if (name.size() > LongestName) return "has more than 1000 bytes";
    for (const char character : name) {
        if (static_cast<unsigned char>(character) < ' ' || character == '\x7F') return "has a control character";
        if (std::string_view("\\:<>\"|?*").find(character) != std::string_view::npos)
            return ZELString("has the character ") + character;
    }
    for (std::size_t begin = 0; begin <= name.size();) {
        const std::size_t end = std::min(name.find('/', begin), name.size());
        if (const char* const problem = PartProblem(name.substr(begin, end - begin)); *problem != '\0') return problem;
        begin = end + 1;
    }
    return "";
}

ZELString Printable(std::string_view text) {
    constexpr std::size_t Longest = 200;
    ZELString printable;
    for (const char character : text.substr(0, Longest)) {
        const auto code = static_cast<unsigned char>(character);
        // UTF-8 has control characters of two bytes as well.
        const bool isSecondByte = code >= 0x80 && code < 0xA0 && printable.View().ends_with('\xC2');
        printable += code < ' ' || code == 0x7F || isSecondByte ? '?' : character;
    }
    return text.size() > Longest ? printable + "..." : printable;
}
