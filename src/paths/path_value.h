// Path values: the one form in which each is kept (backslashes, no empty or "." components, no ".." that can be taken
// back, no backslash at the end), and the names that can be a part of one.
#ifndef PATHS_PATH_VALUE_H
#define PATHS_PATH_VALUE_H

#include <cstddef>
#include <string_view>

#include "base/ascii.h"

namespace zel {

// The text must lie in a block that may be read and written up to the next multiple of this many bytes.
inline constexpr std::size_t PathPadding = 16;

// Normalises the `length` bytes at `text` in place, in this order, and returns the new length:
//   1. every "/" becomes a backslash;
//   2. runs of backslashes from the second character on become one, so that a leading pair (a network path) survives;
//   3. every "\.\" becomes a backslash, until none is left;
//   4. at least three characters that end with "\.": the dot goes;
//   5. at least three characters that begin with ".\": both go;
//   6. from left to right, each "\.." before the end or a backslash goes together with the component before it, when
//      that is not empty, not all dots, and preceded by a backslash;
//   7. at least two characters that end with a backslash: that one goes, also behind a drive ("C:\" becomes "C:").
// Linear; the same text again when applied twice.
std::size_t NormalisePath(char* text, std::size_t length) noexcept;

// Whether a path value that ends with `name` leads to it: a backslash in it would be read as a separator.
inline bool IsPathComponent(std::string_view name) noexcept {
    return name.find('\\') == std::string_view::npos;
}

// Whether `name` is a letter and ":", which stand for a drive at the beginning of a path value.
inline bool IsDrive(std::string_view name) noexcept {
    return name.size() == 2 && name[1] == ':' && IsAsciiLetter(name[0]);
}

}  // namespace zel

#endif
