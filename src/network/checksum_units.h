// The remainder of a long message, without shifts.
//
// Squaring a polynomial over GF(2) only spreads its terms, so P divides x^(32u) + x^(7u) + x^(6u) + x^(2u) + 1 for
// every power of two u. Long division by that takes whole units of u bits: each unit of the quotient is the unit of the
// message plus the quotient's units 25, 26, 30 and 32 before. What is left at the end is a message of 32 units.
#ifndef NETWORK_CHECKSUM_UNITS_H
#define NETWORK_CHECKSUM_UNITS_H

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "network/checksum.h"

namespace zel {

constexpr std::size_t UnitCount = 32;

// Begins a division whose message follows the one that `bits` stands for: there is no quotient yet, but what those
// bits add to the first 8 bytes.
inline void BeginUnits(std::uint64_t* units, std::size_t words, std::uint64_t bits) noexcept {
    const std::uint64_t head = TimesX64(Shorten(bits));
    unsigned char bytes[sizeof head];
    for (std::size_t i = 0; i < sizeof head; ++i) bytes[i] = static_cast<unsigned char>(head >> (56 - 8 * i));
    std::memset(units, 0, UnitCount * words * sizeof *units);
    std::memcpy(units, bytes, sizeof bytes);
}

// Turns the last 32 units of the quotient, `words` words each, into what is left of the message: within the last 32
// there is nothing to divide, so what the newest units took from their neighbours is taken out again.
inline void EndUnits(std::uint64_t* units, std::size_t words) noexcept {
    for (std::size_t i = UnitCount * words; i-- > 25 * words;) {
        if (i >= 30 * words) units[i] ^= units[i - 30 * words];
        if (i >= 26 * words) units[i] ^= units[i - 26 * words];
        units[i] ^= units[i - 25 * words];
    }
}

}  // namespace zel

#endif
