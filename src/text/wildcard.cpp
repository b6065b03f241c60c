// A pattern is the pieces between its stars. What is anchored is tested first, since it costs least and settles most
// names; then the pieces are sought in order, each from the beginning (not the end) of the one before, so that they may
// overlap. Nothing is copied and no list of pieces is made: the pattern is cut as the search goes on. Pieces are short,
// so they are walked byte by byte where a call would cost more than it saves.
// An anchored last piece need not be sought: it stands at the end, so it is found there unless the piece before begins
// later still.
// A pattern without a star is one piece that is anchored at both ends, not a text to be equal to: "a" matches "aba".

#include "text/wildcard.h"

#include <cstddef>

#include "TATextUtilities.h"
#include "foundations/text_search.h"

using namespace zel;

namespace {

constexpr std::size_t npos = std::string_view::npos;

// Takes the anchored first piece off `pattern`; false when `text` does not begin with it. A star that stands in `text`
// at the same place is the pattern's all the same.
bool TakeFirst(std::string_view text, std::string_view& pattern) noexcept {
    std::size_t size = 0;
    for (; size < pattern.size() && pattern[size] != '*'; ++size)
        if (size == text.size() || text[size] != pattern[size]) return false;
    pattern.remove_prefix(size);
    return true;
}

// The same for the last piece of a pattern that has a star, at the end of `text`. Tells the size of the piece.
bool TakeLast(std::string_view text, std::string_view& pattern, std::size_t& size) noexcept {
    for (size = 0; pattern[pattern.size() - 1 - size] != '*'; ++size)
        if (size == text.size() || text[text.size() - 1 - size] != pattern[pattern.size() - 1 - size]) return false;
    pattern.remove_suffix(size);
    return true;
}

// A text or pattern that memory cut off matches nothing.
bool AreWhole(const ZELString& text, const ZELString& pattern) noexcept {
    return !text.IsIncomplete() && !pattern.IsIncomplete();
}

}  // namespace

bool zel::MatchesWildcard(std::string_view text, std::string_view pattern) noexcept {
    std::string_view inner = pattern;  // in the end what stands between the anchored pieces
    if (!TakeFirst(text, inner)) return false;
    if (inner.empty()) return pattern.empty() ? text.empty() : text.ends_with(pattern);
    std::size_t lastSize = 0;
    if (!TakeLast(text, inner, lastSize)) return false;

    bool hasPieces = inner.size() < pattern.size();
    std::size_t from = 0;
    for (std::size_t begin = 0, end = 0; begin < inner.size(); begin = end + 1) {
        for (end = begin; end < inner.size() && inner[end] != '*'; ++end) continue;
        if (end == begin) continue;
        from = FindText(text, inner.substr(begin, end - begin), from);
        if (from == npos) return false;
        hasPieces = true;
    }
    if (from > text.size() - lastSize) return false;
    // Stars alone: "*" matches everything, more of them only themselves.
    return hasPieces || pattern.size() == 1 || pattern == text;
}

bool zel::MatchesWildcardNoCase(std::string_view text, std::string_view pattern) noexcept {
    ZELString upperText(text);
    ZELString upperPattern(pattern);
    if (upperText.View().size() != text.size() || upperPattern.View().size() != pattern.size()) return false;
    return MatchesWildcard(upperText.ToUpper().View(), upperPattern.ToUpper().View());
}

int TestMatch(ZELString text, ZELString pattern) noexcept {
    return AreWhole(text, pattern) && MatchesWildcard(text.View(), pattern.View()) ? 1 : 0;
}

int TestMatchNoCase(ZELString text, ZELString pattern) noexcept {
    return AreWhole(text, pattern) && MatchesWildcard(text.ToUpper().View(), pattern.ToUpper().View()) ? 1 : 0;
}
