// One candidate against one compiled filter.
#ifndef FILTERS_FILTER_MATCHER_H
#define FILTERS_FILTER_MATCHER_H

#include <string_view>

class TAUnicodeRegularExpression;

namespace zel {

// 1 or 0, and -1 when memory ran out. `text` has lost its blanks.
int MatchFilter(const TAUnicodeRegularExpression& filter, std::u32string_view text) noexcept;

}  // namespace zel

#endif
