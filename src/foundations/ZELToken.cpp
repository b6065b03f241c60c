// A position moves through a copy of the text; each call costs the length of what it passes, times the number of
// separators.

#include "ZELToken.h"

#include <algorithm>
#include <string_view>

using namespace zel;

ZELToken::ZELToken(const ZELUnicodeString& text) noexcept : _text(text) {}

ZELToken::~ZELToken() = default;

ZELUnicodeString ZELToken::GetNextToken(const ZELUnicodeString& separators) noexcept {
    const std::u32string_view text = _text.View();
    const std::size_t start = std::min(text.find_first_not_of(separators.View(), _position), text.size());
    const std::size_t end = std::min(text.find_first_of(separators.View(), start), text.size());
    _position = std::min(end + 1, text.size());
    return ZELUnicodeString(text.substr(start, end - start));
}
