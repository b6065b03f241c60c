// A pattern is the pieces between its stars. What is anchored is tested first, since it costs nothing and settles most
// names; then the pieces are sought in order, each from the beginning (not the end) of the one before, so that they may
// overlap. Nothing is copied and no list of pieces is made: the pattern is cut as the search goes on.
// An anchored last piece need not be sought: it stands at the end, so it is found there unless the piece before begins
// later still.
// A pattern without a star is one piece that is anchored at both ends, not a text to be equal to: "a" matches "aba".

#include "files/wildcard.h"

#include <cstddef>

#include "TATextUtilities.h"
#include "foundations/text_search.h"

namespace {

constexpr std::size_t npos = std::string_view::npos;

// Seeks the pieces of `pattern`, which stand between stars at both ends, from `from` on. The position where the last
// one begins, or npos.
std::size_t FindPieces(std::string_view text, std::string_view pattern, std::size_t from) noexcept {
    while (!pattern.empty()) {
        const std::size_t size = pattern.find('*');
        const std::string_view piece = pattern.substr(0, size);
        if (!piece.empty()) {
            from = FindText(text, piece, from);
            if (from == npos) return npos;
        }
        if (size == npos) break;
        pattern.remove_prefix(size + 1);
    }
    return from;
}

}  // namespace

bool MatchesWildcard(std::string_view text, std::string_view pattern) noexcept {
    const std::size_t firstStar = pattern.find('*');
    if (firstStar == npos) {
        if (pattern.empty()) return text.empty();
        return text.starts_with(pattern) && text.ends_with(pattern);
    }
    const std::size_t lastStar = pattern.rfind('*');
    const std::string_view first = pattern.substr(0, firstStar);
    const std::string_view last = pattern.substr(lastStar + 1);
    if (!text.starts_with(first) || !text.ends_with(last)) return false;
    const std::string_view inner = pattern.substr(firstStar, lastStar - firstStar);
    const std::size_t from = FindPieces(text, inner, 0);
    if (from == npos || from > text.size() - last.size()) return false;
    // Stars alone: "*" matches everything, more of them only themselves.
    const bool hasPieces = !first.empty() || !last.empty() || inner.find_first_not_of('*') != npos;
    return hasPieces || pattern.size() == 1 || pattern == text;
}

bool MatchesWildcardNoCase(std::string_view text, std::string_view pattern) noexcept {
    ZELString upperText(text);
    ZELString upperPattern(pattern);
    if (upperText.View().size() != text.size() || upperPattern.View().size() != pattern.size()) return false;
    return MatchesWildcard(upperText.ToUpper().View(), upperPattern.ToUpper().View());
}

int TestMatch(ZELString text, ZELString pattern) noexcept {
    return MatchesWildcard(text.View(), pattern.View()) ? 1 : 0;
}

int TestMatchNoCase(ZELString text, ZELString pattern) noexcept {
    return MatchesWildcard(text.ToUpper().View(), pattern.ToUpper().View()) ? 1 : 0;
}
