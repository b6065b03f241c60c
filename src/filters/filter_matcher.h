// Matching one candidate against one program.
#ifndef FILTERS_FILTER_MATCHER_H
#define FILTERS_FILTER_MATCHER_H

#include <string_view>

namespace zel {

class FilterProgram;

// 1 or 0, and -1 when memory ran out. The program is valid; `text` has no blanks at its ends.
int MatchFilter(const FilterProgram& program, std::u32string_view text) noexcept;

}  // namespace zel

#endif
