// Which names of a listing can stand in a path value.
#ifndef PATHS_PATH_NAMES_H
#define PATHS_PATH_NAMES_H

#include <string_view>

namespace zel {

// Whether a path value that ends with `name` leads to it: a backslash in it would be read as a separator.
inline bool IsPathComponent(std::string_view name) noexcept {
    return name.find('\\') == std::string_view::npos;
}

// A letter and ":", which at the beginning of a path value stand for a drive.
inline bool IsDrive(std::string_view name) noexcept {
    const char letter = name.empty() ? '\0' : static_cast<char>(name[0] | 0x20);
    return name.size() == 2 && name[1] == ':' && letter >= 'a' && letter <= 'z';
}

}  // namespace zel

#endif
