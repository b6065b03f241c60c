// The ways to compute the remainder behind crc(), all with the same results, so that tests can compare them.
//
// Everything here stands on P = x^32 + x^7 + x^6 + x^2 + 1 having few terms, all of them low: x^32 is congruent to
// x^7 + x^6 + x^2 + 1, so what is above bit 31 comes down by four shifts and no table.
#ifndef NETWORK_CHECKSUM_H
#define NETWORK_CHECKSUM_H

#include <cstddef>
#include <cstdint>

namespace zel {

// Appends `size` bytes to a message. `bits` stands for the message before: any 64 bits that are congruent to it modulo
// P, and so is the result. Only the end of a checksum needs the remainder itself.
using AppendBytes = std::uint64_t (*)(std::uint64_t bits, const unsigned char* bytes, std::size_t size) noexcept;

// By shifts, 8 bytes at a time: for short texts, and for what the others leave.
std::uint64_t AppendByShifts(std::uint64_t bits, const unsigned char* bytes, std::size_t size) noexcept;
// By whole units of 16 bytes: for long texts.
std::uint64_t AppendByUnits(std::uint64_t bits, const unsigned char* bytes, std::size_t size) noexcept;

// The same with instructions that only newer processors have; null where they lack. The first serves from some dozens
// of bytes to some thousands, the second longer texts.
AppendBytes AppendByProducts() noexcept;
AppendBytes AppendByWideUnits() noexcept;

// The product with x^32, which fits in 39 bits, congruent modulo P.
constexpr std::uint64_t TimesX32(std::uint64_t bits) noexcept {
    return bits ^ bits << 2 ^ bits << 6 ^ bits << 7;
}

// The same with x^64, in 14 bits more than the factor has.
constexpr std::uint64_t TimesX64(std::uint64_t bits) noexcept {
    return bits ^ bits << 4 ^ bits << 12 ^ bits << 14;
}

// 64 congruent bits become 39 at most: then TimesX64 has room.
constexpr std::uint64_t Shorten(std::uint64_t bits) noexcept {
    return TimesX32(bits >> 32) ^ (bits & 0xFFFFFFFF);
}

constexpr std::uint32_t RemainderOf(std::uint64_t bits) noexcept {
    return static_cast<std::uint32_t>(Shorten(Shorten(bits)));
}

constexpr std::uint32_t RemainderOfPower(int exponent) noexcept {
    std::uint32_t power = 1;
    while (exponent-- > 0) power = RemainderOf(std::uint64_t{power} << 1);
    return power;
}

// The first byte is the highest. Written out, since compilers make one load and one byte swap of this.
inline std::uint64_t LoadHighFirst(const unsigned char* bytes) noexcept {
    const auto byte = [bytes](int i) { return std::uint64_t{bytes[i]}; };
    return byte(0) << 56 | byte(1) << 48 | byte(2) << 40 | byte(3) << 32 | byte(4) << 24 | byte(5) << 16 |
           byte(6) << 8 | byte(7);
}

}  // namespace zel

#endif
