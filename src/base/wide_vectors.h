// Instructions that only newer processors have: carry-less products (PCLMULQDQ) and vectors of 32 bytes (AVX2).
//
// A function that uses them is marked ZEL_FOR_PRODUCTS or ZEL_FOR_WIDE_VECTORS and may be called only where
// CpuHasProducts() or CpuHasWideVectors() returned true. Without intrinsics both return false, and ZEL_HAS_INTRINSICS
// leaves such functions out.
//
// Danger: a function compiled for wide vectors must call ClearWideVectors() before it returns. Code that uses the lower
// halves alone runs at a third of its speed otherwise, and the compiler does not do it before every call.
#ifndef BASE_WIDE_VECTORS_H
#define BASE_WIDE_VECTORS_H

#include <cstddef>
#include <cstdint>

#include "base/compiler.h"

#if ZEL_HAS_INTRINSICS

#include <immintrin.h>
#if ZEL_MSVC
#include <intrin.h>
#endif

#define ZEL_FOR_PRODUCTS ZEL_TARGET("pclmul,ssse3")
#define ZEL_FOR_WIDE_VECTORS ZEL_TARGET("avx2")

namespace zel {

#if ZEL_MSVC

// One bit of the answer of CPUID: leaf, register (0 to 3: EAX to EDX), bit.
inline bool CpuidBit(int leaf, int index, int bit) noexcept {
    int registers[4];
    __cpuidex(registers, leaf, 0);
    return (registers[index] >> bit & 1) != 0;
}
inline bool CpuHasProducts() noexcept {
    return CpuidBit(1, 2, 1) && CpuidBit(1, 2, 9);
}
inline bool CpuHasWideVectors() noexcept {
    // The system must save the registers too: OSXSAVE, and the XMM and YMM state in XCR0.
    return CpuidBit(1, 2, 27) && (_xgetbv(0) & 6) == 6 && CpuidBit(7, 1, 5);
}

#else

inline bool CpuHasProducts() noexcept {
    return __builtin_cpu_supports("pclmul") && __builtin_cpu_supports("ssse3");
}
inline bool CpuHasWideVectors() noexcept {
    return __builtin_cpu_supports("avx2");
}

#endif

// A polynomial over GF(2) of 128 bits.
struct Polynomial {
    __m128i bits;
};

// 16 bytes, the first of which is the highest.
ZEL_FOR_PRODUCTS inline Polynomial LoadPolynomial(const unsigned char* bytes) noexcept {
    const __m128i reversed = _mm_set_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
    return {_mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes)), reversed)};
}
ZEL_FOR_PRODUCTS inline Polynomial PolynomialOf(std::uint64_t high, std::uint64_t low) noexcept {
    return {_mm_set_epi64x(static_cast<long long>(high), static_cast<long long>(low))};
}
ZEL_FOR_PRODUCTS inline std::uint64_t HighHalf(Polynomial value) noexcept {
    return static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(value.bits, value.bits)));
}
ZEL_FOR_PRODUCTS inline std::uint64_t LowHalf(Polynomial value) noexcept {
    return static_cast<std::uint64_t>(_mm_cvtsi128_si64(value.bits));
}
ZEL_FOR_PRODUCTS inline Polynomial Add(Polynomial left, Polynomial right) noexcept {
    return {_mm_xor_si128(left.bits, right.bits)};
}
// The product of the high halves plus that of the low halves.
ZEL_FOR_PRODUCTS inline Polynomial MultiplyHalves(Polynomial left, Polynomial right) noexcept {
    const __m128i high = _mm_clmulepi64_si128(left.bits, right.bits, 0x11);
    const __m128i low = _mm_clmulepi64_si128(left.bits, right.bits, 0x00);
    return {_mm_xor_si128(high, low)};
}

struct Bytes32 {
    static constexpr std::size_t Size = 32;

    __m256i value;
};

ZEL_FOR_WIDE_VECTORS inline Bytes32 LoadWide(const void* from) noexcept {
    return {_mm256_loadu_si256(static_cast<const __m256i*>(from))};
}
ZEL_FOR_WIDE_VECTORS inline void StoreWide(void* to, Bytes32 bytes) noexcept {
    _mm256_storeu_si256(static_cast<__m256i*>(to), bytes.value);
}
ZEL_FOR_WIDE_VECTORS inline Bytes32 AddWide(Bytes32 left, Bytes32 right) noexcept {
    return {_mm256_xor_si256(left.value, right.value)};
}
ZEL_FOR_WIDE_VECTORS inline void ClearWideVectors() noexcept {
    _mm256_zeroupper();
}

}  // namespace zel

#else

namespace zel {

inline bool CpuHasProducts() noexcept {
    return false;
}
inline bool CpuHasWideVectors() noexcept {
    return false;
}

}  // namespace zel

#endif

#endif
