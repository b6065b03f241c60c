// Substring search for every family of the library.
#ifndef FOUNDATIONS_TEXT_SEARCH_H
#define FOUNDATIONS_TEXT_SEARCH_H

#include <cstddef>
#include <string_view>

// The position of the first occurrence of `what` in `text` that begins at or after `from`; npos when there is none,
// when `what` is empty, or when `from` lies outside. Linear in the lengths, whatever the two texts are.
std::size_t FindText(std::string_view text, std::string_view what, std::size_t from) noexcept;

#endif
