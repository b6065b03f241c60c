// The characters of XML 1.0 (fifth edition): which may stand in names and texts, and how the others are written.
#ifndef TEXT_XML_TEXT_H
#define TEXT_XML_TEXT_H

#include <string_view>
#include <utility>

#include "ZELString.h"

namespace zel {

// The UTF-8 text as a name: "_" for each character (and each byte that is not UTF-8) that a name must not hold where it
// stands, and for an empty text. Empty when memory runs out.
ZELString MakeXMLName(std::string_view text) noexcept;

enum class XMLPlace { Text, AttributeValue };

// A text of XML while it grows. Once a piece has found no memory, no further one is added.
class XMLOutput {
public:
    XMLOutput& Put(std::string_view piece) noexcept;
    // Appends UTF-8 with its special characters escaped. Forbidden characters and bytes that are not UTF-8 become
    // U+FFFD. Carriage returns, and in attribute values tabs and line feeds too, become character references: a parser
    // would turn the characters themselves into others.
    XMLOutput& PutText(std::string_view text, XMLPlace place) noexcept;
    // Two blanks for each of at most 32 levels: a tree of n levels would take n^2 of them.
    XMLOutput& PutIndentation(int level) noexcept;

    bool HasFailed() const noexcept { return _failed; }
    void Fail() noexcept { _failed = true; }
    // Empty and incomplete after a failure.
    ZELString Take() noexcept { return _failed ? ZELString::Incomplete() : std::move(_xml); }

private:
    ZELString _xml;
    bool _failed = false;
};

}  // namespace zel

#endif
