// The codes of a run-length stream, shared by both directions; TARunLength.h tells what they mean.
#ifndef NETWORK_RUN_LENGTH_CODES_H
#define NETWORK_RUN_LENGTH_CODES_H

#include <cstddef>

namespace zel {

constexpr std::size_t RunLengthHeader = 4;

constexpr unsigned char LiteralCode = 0;         // a byte follows
constexpr std::size_t MostZeros = 127;           // by one code of 1 to 127
constexpr std::size_t ZeroUnit = MostZeros + 1;  // a code of 128 and more stands for so many zeros times code - 127
constexpr std::size_t MostZeroUnits = 63;
constexpr std::size_t BeforeOnes = MostZeros + MostZeroUnits;  // a code above stands for code - 190 bytes 0xFF
constexpr std::size_t MostOnes = 255 - BeforeOnes;

// Says on standard error that `out` is full and gives the failure result.
int ReportOutputOverflow() noexcept;

}  // namespace zel

#endif
