// Substring search for every family of the library.
#ifndef FOUNDATIONS_TEXT_SEARCH_H
#define FOUNDATIONS_TEXT_SEARCH_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "base/bytes16.h"

namespace zel {

// For a `what` that is longer than its head; the callers have checked that it fits behind `from`.
inline constexpr std::size_t SearchHeadSize = 16;
std::size_t FindLongText(std::string_view text, std::string_view what, std::size_t from) noexcept;

// Whether `size` characters (at most SearchHeadSize) are the same: two overlapping words instead of a call of memcmp.
inline bool SameHead(const char* left, const char* right, std::size_t size) noexcept {
    const auto sameWord = [&]<class Word>(Word, std::size_t at) {
        Word one, other;
        std::memcpy(&one, left + at, sizeof one);
        std::memcpy(&other, right + at, sizeof other);
        return one == other;
    };
    if (size >= 8) return sameWord(std::uint64_t{}, 0) && sameWord(std::uint64_t{}, size - 8);
    if (size >= 4) return sameWord(std::uint32_t{}, 0) && sameWord(std::uint32_t{}, size - 4);
    while (size > 0 && left[size - 1] == right[size - 1]) --size;
    return size == 0;
}

// Where `what` begins in a text of medium length: sixteen places at a time are tested for its first and its last
// character, which takes no branch that depends on the text until something is as good as found. In names of files that
// halves the time of a search by memchr, whose hits no processor foresees.
// There must be at least sixteen places from `from` on.
inline std::size_t FindByEnds(std::string_view text, std::string_view what, std::size_t from) noexcept {
    constexpr std::size_t Places = 16;
    const std::size_t lastStep = text.size() - what.size() + 1 - Places;
    const Bytes16 first = RepeatByte(what.front());
    const Bytes16 last = RepeatByte(what.back());
    for (std::size_t at = from;; at += Places) {
        if (at > lastStep) at = lastStep;
        const char* const place = text.data() + at;
        const Bytes16 begins = EqualBytes(LoadBytes(place), first);
        const Bytes16 ends = EqualBytes(LoadBytes(place + what.size() - 1), last);
        for (unsigned found = ByteMask(begins & ends); found != 0; found &= found - 1) {
            const int offset = std::countr_zero(found);
            if (SameHead(place + offset, what.data(), what.size())) return at + static_cast<std::size_t>(offset);
        }
        if (at == lastStep) return std::string_view::npos;
    }
}

// For a `what` so short that comparing it anew at each position is linear enough; it fits behind `from`.
inline std::size_t FindShortText(std::string_view text, std::string_view what, std::size_t from) noexcept {
    // In longer texts memchr catches up.
    constexpr std::size_t Fewest = 16, Most = 256;
    const std::size_t places = text.size() - what.size() + 1 - from;
    if (places >= Fewest && places <= Most) return FindByEnds(text, what, from);
    const char* position = text.data() + from;
    const char* const end = text.data() + (text.size() - what.size()) + 1;
    while ((position = static_cast<const char*>(
                std::memchr(position, what.front(), static_cast<std::size_t>(end - position)))) != nullptr) {
        if (SameHead(position, what.data(), what.size())) return static_cast<std::size_t>(position - text.data());
        if (++position == end) break;
    }
    return std::string_view::npos;
}

// The position of the first occurrence of `what` in `text` that begins at or after `from`; npos when there is none,
// when `what` is empty, or when `from` lies outside. Linear in the lengths, whatever the two texts are.
// In the header because a call costs as much as a search in a short text.
inline std::size_t FindText(std::string_view text, std::string_view what, std::size_t from) noexcept {
    if (what.empty() || from > text.size() || what.size() > text.size() - from) return std::string_view::npos;
    return what.size() <= SearchHeadSize ? FindShortText(text, what, from) : FindLongText(text, what, from);
}

}  // namespace zel

#endif
