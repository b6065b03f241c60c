// Sixteen bytes at a time, or four 32-bit words: the operations that searches, hashes and codes of the library consist
// of.
//
// Idea: each operation is one SSE2 instruction, or a plain loop where the build has no intrinsics. Users are written
// once and are compiled and tested in both forms. Words are in the order of a little-endian processor. Cost: none
// beside the instruction. The plain form is for ports and takes about ten times as long.
#ifndef BASE_BYTES16_H
#define BASE_BYTES16_H

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "base/compiler.h"

#if ZEL_HAS_INTRINSICS
#include <emmintrin.h>
#endif

namespace zel {

static_assert(std::endian::native == std::endian::little);

struct Bytes16 {
    static constexpr std::size_t Size = 16;

#if ZEL_HAS_INTRINSICS
    __m128i value;
#else
    std::array<std::uint8_t, Size> value;
#endif
};

#if ZEL_HAS_INTRINSICS

inline Bytes16 LoadBytes(const void* from) noexcept {
    return {_mm_loadu_si128(static_cast<const __m128i*>(from))};
}
inline void StoreBytes(void* to, Bytes16 bytes) noexcept {
    _mm_storeu_si128(static_cast<__m128i*>(to), bytes.value);
}
// The first 8 bytes only.
inline void StoreFrontHalf(void* to, Bytes16 bytes) noexcept {
    _mm_storel_epi64(static_cast<__m128i*>(to), bytes.value);
}
inline Bytes16 BytesOf(std::uint64_t front, std::uint64_t back) noexcept {
    return {_mm_set_epi64x(static_cast<std::int64_t>(back), static_cast<std::int64_t>(front))};
}
inline Bytes16 RepeatByte(char byte) noexcept {
    return {_mm_set1_epi8(byte)};
}
inline Bytes16 RepeatWord(std::uint32_t word) noexcept {
    return {_mm_set1_epi32(static_cast<int>(word))};
}
inline Bytes16 operator&(Bytes16 left, Bytes16 right) noexcept {
    return {_mm_and_si128(left.value, right.value)};
}
inline Bytes16 operator|(Bytes16 left, Bytes16 right) noexcept {
    return {_mm_or_si128(left.value, right.value)};
}
inline Bytes16 operator^(Bytes16 left, Bytes16 right) noexcept {
    return {_mm_xor_si128(left.value, right.value)};
}
// The bits of `left` that are not in `right`.
inline Bytes16 Without(Bytes16 left, Bytes16 right) noexcept {
    return {_mm_andnot_si128(right.value, left.value)};
}

// Comparisons give all ones in each byte, pair or word for which they hold. Bytes and words are signed numbers.
inline Bytes16 EqualBytes(Bytes16 left, Bytes16 right) noexcept {
    return {_mm_cmpeq_epi8(left.value, right.value)};
}
inline Bytes16 LessBytes(Bytes16 left, Bytes16 right) noexcept {
    return {_mm_cmplt_epi8(left.value, right.value)};
}
inline Bytes16 EqualWords(Bytes16 left, Bytes16 right) noexcept {
    return {_mm_cmpeq_epi32(left.value, right.value)};
}
inline Bytes16 LessWords(Bytes16 left, Bytes16 right) noexcept {
    return {_mm_cmplt_epi32(left.value, right.value)};
}

// One bit for each byte: its highest. Bit 0 is the first byte's.
inline unsigned ByteMask(Bytes16 bytes) noexcept {
    return static_cast<unsigned>(_mm_movemask_epi8(bytes.value));
}
// One bit for each of the four words.
inline unsigned WordMask(Bytes16 words) noexcept {
    return static_cast<unsigned>(_mm_movemask_ps(_mm_castsi128_ps(words.value)));
}

// The bytes of both in turn, beginning with the left one: of their first 8 bytes, and of their last 8.
inline Bytes16 InterleaveFront(Bytes16 left, Bytes16 right) noexcept {
    return {_mm_unpacklo_epi8(left.value, right.value)};
}
inline Bytes16 InterleaveBack(Bytes16 left, Bytes16 right) noexcept {
    return {_mm_unpackhi_epi8(left.value, right.value)};
}
// The second byte of each pair, in the first 8 bytes.
inline Bytes16 SecondOfPairs(Bytes16 pairs) noexcept {
    return {_mm_packus_epi16(_mm_srli_epi16(pairs.value, 8), pairs.value)};
}
// All ones in each pair whose first byte is 0.
inline Bytes16 PairsThatBeginWithZero(Bytes16 pairs) noexcept {
    return {_mm_cmpeq_epi16(_mm_and_si128(pairs.value, _mm_set1_epi16(0x00FF)), _mm_setzero_si128())};
}

// The sixteen bytes as the digits, highest first, of a number to the base 31, modulo 2^32. Digits are signed.
//
// Pairs (31 a + b) become fours, and the fours are joined by powers of 31.
inline std::uint32_t NumberToBase31(Bytes16 bytes) noexcept {
    constexpr std::uint32_t Power4 = 31 * 31 * 31 * 31, Power8 = Power4 * Power4, Power12 = Power8 * Power4;
    const __m128i timesPair = _mm_set1_epi32((1 << 16) | 31);
    const __m128i timesFour = _mm_set1_epi32((1 << 16) | 961);
    const __m128i front = _mm_srai_epi16(_mm_unpacklo_epi8(bytes.value, bytes.value), 8);
    const __m128i back = _mm_srai_epi16(_mm_unpackhi_epi8(bytes.value, bytes.value), 8);
    // Pairs are between -4096 and 4064, so packing loses nothing.
    const __m128i pairs = _mm_packs_epi32(_mm_madd_epi16(front, timesPair), _mm_madd_epi16(back, timesPair));
    const __m128i fours = _mm_madd_epi16(pairs, timesFour);
    // Only the lower halves of the products count.
    const __m128i evens = _mm_mul_epu32(fours, _mm_set_epi64x(Power4, Power12));
    const __m128i odds = _mm_mul_epu32(_mm_srli_epi64(fours, 32), _mm_set_epi64x(1, Power8));
    const __m128i sums = _mm_add_epi32(evens, odds);
    return static_cast<std::uint32_t>(_mm_cvtsi128_si32(_mm_add_epi32(sums, _mm_unpackhi_epi64(sums, sums))));
}

#else

inline Bytes16 LoadBytes(const void* from) noexcept {
    Bytes16 bytes;
    std::memcpy(&bytes.value, from, Bytes16::Size);
    return bytes;
}
inline void StoreBytes(void* to, Bytes16 bytes) noexcept {
    std::memcpy(to, &bytes.value, Bytes16::Size);
}
inline void StoreFrontHalf(void* to, Bytes16 bytes) noexcept {
    std::memcpy(to, &bytes.value, Bytes16::Size / 2);
}
inline Bytes16 BytesOf(std::uint64_t front, std::uint64_t back) noexcept {
    return std::bit_cast<Bytes16>(std::array{front, back});
}
inline Bytes16 RepeatByte(char byte) noexcept {
    Bytes16 bytes;
    bytes.value.fill(static_cast<std::uint8_t>(byte));
    return bytes;
}
inline Bytes16 RepeatWord(std::uint32_t word) noexcept {
    return std::bit_cast<Bytes16>(std::array{word, word, word, word});
}

// Applies an operation to the elements of two values, taken as `Element`s.
template <class Element, class Operation>
Bytes16 ForEach(Bytes16 left, Bytes16 right, Operation operation) noexcept {
    using Elements = std::array<Element, Bytes16::Size / sizeof(Element)>;
    auto elements = std::bit_cast<Elements>(left);
    const auto others = std::bit_cast<Elements>(right);
    for (std::size_t i = 0; i < elements.size(); ++i)
        elements[i] = static_cast<Element>(operation(elements[i], others[i]));
    return std::bit_cast<Bytes16>(elements);
}
inline Bytes16 operator&(Bytes16 left, Bytes16 right) noexcept {
    return ForEach<std::uint64_t>(left, right, [](auto one, auto other) { return one & other; });
}
inline Bytes16 operator|(Bytes16 left, Bytes16 right) noexcept {
    return ForEach<std::uint64_t>(left, right, [](auto one, auto other) { return one | other; });
}
inline Bytes16 operator^(Bytes16 left, Bytes16 right) noexcept {
    return ForEach<std::uint64_t>(left, right, [](auto one, auto other) { return one ^ other; });
}
inline Bytes16 Without(Bytes16 left, Bytes16 right) noexcept {
    return ForEach<std::uint64_t>(left, right, [](auto one, auto other) { return one & ~other; });
}
inline Bytes16 EqualBytes(Bytes16 left, Bytes16 right) noexcept {
    return ForEach<std::int8_t>(left, right, [](auto one, auto other) { return one == other ? -1 : 0; });
}
inline Bytes16 LessBytes(Bytes16 left, Bytes16 right) noexcept {
    return ForEach<std::int8_t>(left, right, [](auto one, auto other) { return one < other ? -1 : 0; });
}
inline Bytes16 EqualWords(Bytes16 left, Bytes16 right) noexcept {
    return ForEach<std::int32_t>(left, right, [](auto one, auto other) { return one == other ? -1 : 0; });
}
inline Bytes16 LessWords(Bytes16 left, Bytes16 right) noexcept {
    return ForEach<std::int32_t>(left, right, [](auto one, auto other) { return one < other ? -1 : 0; });
}
inline unsigned ByteMask(Bytes16 bytes) noexcept {
    unsigned mask = 0;
    for (std::size_t i = 0; i < Bytes16::Size; ++i) mask |= static_cast<unsigned>(bytes.value[i] >> 7) << i;
    return mask;
}
inline unsigned WordMask(Bytes16 words) noexcept {
    unsigned mask = 0;
    for (std::size_t i = 0; i < 4; ++i) mask |= static_cast<unsigned>(words.value[4 * i + 3] >> 7) << i;
    return mask;
}
inline Bytes16 InterleaveFront(Bytes16 left, Bytes16 right) noexcept {
    Bytes16 both;
    for (std::size_t i = 0; i < Bytes16::Size; ++i) both.value[i] = (i % 2 == 0 ? left : right).value[i / 2];
    return both;
}
inline Bytes16 InterleaveBack(Bytes16 left, Bytes16 right) noexcept {
    Bytes16 both;
    for (std::size_t i = 0; i < Bytes16::Size; ++i) both.value[i] = (i % 2 == 0 ? left : right).value[8 + i / 2];
    return both;
}
inline Bytes16 SecondOfPairs(Bytes16 pairs) noexcept {
    for (std::size_t i = 0; i < Bytes16::Size / 2; ++i) pairs.value[i] = pairs.value[2 * i + 1];
    return pairs;
}
inline Bytes16 PairsThatBeginWithZero(Bytes16 pairs) noexcept {
    return ForEach<std::uint16_t>(pairs, pairs, [](auto one, auto) { return (one & 0xFF) == 0 ? 0xFFFF : 0; });
}
inline std::uint32_t NumberToBase31(Bytes16 bytes) noexcept {
    std::uint32_t number = 0;
    for (const std::uint8_t byte : bytes.value)
        number = number * 31 + static_cast<std::uint32_t>(static_cast<std::int8_t>(byte));
    return number;
}

#endif

}  // namespace zel

#endif
