// The hash that decides the bucket of a key, and with it the order of every walk: it must never change.
//
// Starting at 0, each byte b makes it hash * 31 + b modulo 2^32, with b taken as a signed 8-bit number. That is a
// polynomial in 31, so parts of a text may be evaluated apart: 16 bytes at a time, joined by powers of 31. Bytes that
// are zero in front of a text add nothing, so a rest stands at the end of a register that is zero before it.
//
// Danger: no byte outside the text may be read, so a short text is put together from two loads that overlap inside it.
#ifndef CONTAINERS_TEXT_HASH_H
#define CONTAINERS_TEXT_HASH_H

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "base/bytes16.h"

namespace zel {

inline constexpr std::size_t HashStep = 16;

inline constexpr std::array<std::uint32_t, HashStep + 1> powersOf31 = [] {
    std::array<std::uint32_t, HashStep + 1> result{1};
    for (std::size_t i = 1; i <= HashStep; ++i) result[i] = result[i - 1] * 31;
    return result;
}();

// 16 bytes of zeros and 16 of ones: 16 bytes from position n on keep the last n bytes of a register.
alignas(16) inline constexpr std::array<std::uint8_t, 2 * HashStep> lastBytesMasks = [] {
    std::array<std::uint8_t, 2 * HashStep> result{};
    for (std::size_t i = HashStep; i < 2 * HashStep; ++i) result[i] = 0xFF;
    return result;
}();

template <class Word>
Word LoadWord(const char* bytes) noexcept {
    Word word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

// The bytes of a text of fewer than 16, at the end of a register.
inline Bytes16 LoadShort(std::string_view text) noexcept {
    const char* const begin = text.data();
    const std::size_t size = text.size();
    std::uint64_t front = 0;
    std::uint64_t back = 0;
    if (size >= 8) {
        front = size > 8 ? LoadWord<std::uint64_t>(begin) << (8 * (16 - size)) : 0;
        back = LoadWord<std::uint64_t>(begin + size - 8);
    } else if (size >= 4) {
        const std::uint64_t first = LoadWord<std::uint32_t>(begin);
        back = ((first << (8 * (8 - size))) & 0xFFFFFFFF) |
               static_cast<std::uint64_t>(LoadWord<std::uint32_t>(begin + size - 4)) << 32;
    } else {
        for (const char byte : text)
            back = back >> 8 | static_cast<std::uint64_t>(static_cast<std::uint8_t>(byte)) << 56;
    }
    return BytesOf(front, back);
}

// Inlined also where compilers find it large: it is a third of a look-up, and its steps overlap with what follows.
ZEL_ALWAYS_INLINE std::uint32_t HashText(std::string_view text) noexcept {
    if (text.size() < HashStep) return NumberToBase31(LoadShort(text));
    const char* at = text.data();
    const char* const end = at + text.size();
    std::uint32_t hash = 0;
    for (; end - at >= static_cast<std::ptrdiff_t>(HashStep); at += HashStep)
        hash = hash * powersOf31[HashStep] + NumberToBase31(LoadBytes(at));
    const auto rest = static_cast<std::size_t>(end - at);
    if (rest == 0) return hash;
    const Bytes16 last = LoadBytes(end - HashStep) & LoadBytes(lastBytesMasks.data() + rest);
    return hash * powersOf31[rest] + NumberToBase31(last);
}

}  // namespace zel

#endif
