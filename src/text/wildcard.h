// Wildcard patterns on views: what TestMatch decides, for the library's own loops over many names.
#ifndef TEXT_WILDCARD_H
#define TEXT_WILDCARD_H

#include <string_view>

namespace zel {

// Linear in the two lengths; never allocates, but for a piece of more than 16 bytes in a text that resembles it.
bool MatchesWildcard(std::string_view text, std::string_view pattern) noexcept;

// Without regard to the case of A to Z. Copies texts of more than 31 bytes; false when memory runs out.
bool MatchesWildcardNoCase(std::string_view text, std::string_view pattern) noexcept;

}  // namespace zel

#endif
