// The hash that decides the bucket of a key, and with it the order of every walk: it must never change.
//
// Starting at 0, each byte b makes it hash * 31 + b modulo 2^32, with b taken as a signed 8-bit number. That is a
// polynomial in 31, so parts of a text may be evaluated apart: 16 bytes at a time, as pairs (31 a + b), then fours, in
// the lanes of one register; the fours are joined by powers of 31. Bytes that are zero in front of a text add nothing,
// so a rest stands at the end of a register that is zero before it.
//
// Danger: no byte outside the text may be read, so a short text is put together from two loads that overlap inside it.
#ifndef CONTAINERS_TEXT_HASH_H
#define CONTAINERS_TEXT_HASH_H

#include <emmintrin.h>  // SSE2 is part of every x86-64

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace zel {

static_assert(std::endian::native == std::endian::little);

inline constexpr std::size_t Step = 16;

inline constexpr std::array<std::uint32_t, Step + 1> powers = [] {
    std::array<std::uint32_t, Step + 1> result{1};
    for (std::size_t i = 1; i <= Step; ++i) result[i] = result[i - 1] * 31;
    return result;
}();

// 16 bytes of zeros and 16 of ones: 16 bytes from position n on keep the last n bytes of a register.
alignas(16) inline constexpr std::array<std::uint8_t, 2 * Step> keepLast = [] {
    std::array<std::uint8_t, 2 * Step> result{};
    for (std::size_t i = Step; i < 2 * Step; ++i) result[i] = 0xFF;
    return result;
}();

template <class Word>
Word LoadWord(const char* bytes) noexcept {
    Word word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

inline __m128i LoadStep(const void* bytes) noexcept {
    return _mm_loadu_si128(static_cast<const __m128i*>(bytes));
}

inline std::uint32_t HashStep(__m128i bytes) noexcept {
    const __m128i timesPair = _mm_set1_epi32((1 << 16) | 31);
    const __m128i timesFour = _mm_set1_epi32((1 << 16) | 961);
    const __m128i front = _mm_srai_epi16(_mm_unpacklo_epi8(bytes, bytes), 8);
    const __m128i back = _mm_srai_epi16(_mm_unpackhi_epi8(bytes, bytes), 8);
    // Pairs lie between -4096 and 4064, so packing loses nothing.
    const __m128i pairs = _mm_packs_epi32(_mm_madd_epi16(front, timesPair), _mm_madd_epi16(back, timesPair));
    const __m128i fours = _mm_madd_epi16(pairs, timesFour);
    // The products' lower halves are all that counts.
    const __m128i evens = _mm_mul_epu32(fours, _mm_set_epi64x(powers[4], powers[12]));
    const __m128i odds = _mm_mul_epu32(_mm_srli_epi64(fours, 32), _mm_set_epi64x(1, powers[8]));
    const __m128i sums = _mm_add_epi32(evens, odds);
    return static_cast<std::uint32_t>(_mm_cvtsi128_si32(_mm_add_epi32(sums, _mm_unpackhi_epi64(sums, sums))));
}

// The bytes of a text of fewer than 16, at the end of a register.
inline __m128i LoadShort(std::string_view text) noexcept {
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
    return _mm_set_epi64x(static_cast<std::int64_t>(back), static_cast<std::int64_t>(front));
}

// Inlined also where compilers find it large: it is a third of a look-up, and its steps overlap with what follows.
[[gnu::always_inline]] inline std::uint32_t HashText(std::string_view text) noexcept {
    if (text.size() < Step) return HashStep(LoadShort(text));
    const char* at = text.data();
    const char* const end = at + text.size();
    std::uint32_t hash = 0;
    for (; end - at >= static_cast<std::ptrdiff_t>(Step); at += Step)
        hash = hash * powers[Step] + HashStep(LoadStep(at));
    const auto rest = static_cast<std::size_t>(end - at);
    if (rest == 0) return hash;
    const __m128i last = _mm_and_si128(LoadStep(end - Step), LoadStep(keepLast.data() + rest));
    return hash * powers[rest] + HashStep(last);
}

}  // namespace zel

#endif
