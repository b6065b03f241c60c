// The names that travel between couriers.
#ifndef EXAMPLES_COURIER_NAMES_H
#define EXAMPLES_COURIER_NAMES_H

#include <cstddef>
#include <string_view>

#include "ZELString.h"

constexpr std::size_t LongestName = 1000;  // so that a request fits a block with room to spare

// What is wrong with a name that shall be put below a directory; empty when nothing is. Good names are relative, have
// "/" between their parts, lead downwards only, and mean the same file on every system.
ZELString NameProblem(std::string_view name);

// Whether a text that is empty when all is well tells a problem; also when memory ran out for it.
inline bool IsProblem(const ZELString& problem) {
    return problem.Length() > 0 || problem.IsIncomplete();
}

// A text of somebody else's, fit for a terminal: control characters are replaced and what is too long is cut.
ZELString Printable(std::string_view text);

#endif
