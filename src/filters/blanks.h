// What filters and candidates lose at both ends.
#ifndef FILTERS_BLANKS_H
#define FILTERS_BLANKS_H

#include <string_view>

namespace zel {

inline constexpr char32_t FilterBlank = U' ';

inline std::u32string_view WithoutBlanks(std::u32string_view text) noexcept {
    while (!text.empty() && text.front() == FilterBlank) text.remove_prefix(1);
    while (!text.empty() && text.back() == FilterBlank) text.remove_suffix(1);
    return text;
}

}  // namespace zel

#endif
