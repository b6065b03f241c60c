// The checksum with carry-less products (PCLMULQDQ) and with units of 32 bytes (AVX2): the one place of this family
// that uses compiler extensions, to compile functions for processors that are asked for at run time.
//
// Products: with a message in 128-bit pieces, high first, the piece H * x^64 + L is moved d bits on by
// H * (x^(d + 64) mod P) + L * (x^d mod P), two products that fit in 96 bits. Four pieces move beside each other, since
// one product waits for the other. 6 to 8 times as fast as shifts at 1 KiB.
// Units: checksum_units.h; at 64 KiB twice as fast as the neutral form and 1.5 times as fast as products.
//
// A function compiled for wide registers must clear their upper halves before it leaves: code that uses the lower
// halves alone runs at a third of its speed otherwise, and the compiler does not do it before every call.

#include <cstdint>

#include <immintrin.h>

#include "network/checksum_units.h"

using namespace zel;

#define FOR_PRODUCTS __attribute__((target("pclmul,ssse3")))
#define FOR_WIDE_UNITS __attribute__((target("avx2")))

namespace {

constexpr std::size_t Step = sizeof(__m128i);

// 16 bytes as a polynomial: the first byte highest.
FOR_PRODUCTS inline __m128i LoadPiece(const unsigned char* bytes) noexcept {
    const __m128i reversed = _mm_set_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
    return _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes)), reversed);
}

// Factors that move a piece on by that many bits.
template <int Distance>
FOR_PRODUCTS inline __m128i Factors() noexcept {
    constexpr std::uint32_t high = RemainderOfPower(Distance + 64);
    constexpr std::uint32_t low = RemainderOfPower(Distance);
    return _mm_set_epi64x(high, low);
}

FOR_PRODUCTS inline __m128i MoveOn(__m128i piece, __m128i factors, __m128i to) noexcept {
    const __m128i high = _mm_clmulepi64_si128(piece, factors, 0x11);
    const __m128i low = _mm_clmulepi64_si128(piece, factors, 0x00);
    return _mm_xor_si128(_mm_xor_si128(low, to), high);
}

// The first piece of a message that goes on behind the one that `bits` stands for.
FOR_PRODUCTS inline __m128i BeginPieces(std::uint64_t bits, const unsigned char* bytes) noexcept {
    const __m128i first = LoadPiece(bytes);
    if (bits == 0) return first;  // as nearly always: what follows is half the time of a short text
    // The bits before, times x^128: 60 bits in the first piece.
    const std::uint64_t before = TimesX64(TimesX64(RemainderOf(bits)));
    return _mm_xor_si128(first, _mm_cvtsi64_si128(static_cast<long long>(before)));
}

// Piece by piece to the end; what remains is the last one.
FOR_PRODUCTS inline std::uint64_t EndPieces(__m128i last, const unsigned char* bytes,
                                            const unsigned char* end) noexcept {
    const __m128i by128 = Factors<128>();
    for (; bytes < end; bytes += Step) last = MoveOn(last, by128, LoadPiece(bytes));
    const auto high = static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(last, last)));
    const auto low = static_cast<std::uint64_t>(_mm_cvtsi128_si64(last));
    return TimesX64(Shorten(high)) ^ low;
}

FOR_PRODUCTS std::uint64_t Products(std::uint64_t bits, const unsigned char* bytes, std::size_t size) noexcept {
    if (size < Step) return AppendByShifts(bits, bytes, size);
    // What is no whole piece goes first, so that the end needs nothing.
    const std::size_t head = size % Step;
    if (head != 0) bits = AppendByShifts(bits, bytes, head);
    const unsigned char* const end = bytes + size;
    bytes += head;
    __m128i last = BeginPieces(bits, bytes);
    bytes += Step;
    if (end - bytes >= static_cast<std::ptrdiff_t>(7 * Step)) {
        __m128i pieces[4] = {last, LoadPiece(bytes), LoadPiece(bytes + Step), LoadPiece(bytes + 2 * Step)};
        bytes += 3 * Step;
        const __m128i by512 = Factors<512>();
        for (; end - bytes >= static_cast<std::ptrdiff_t>(4 * Step); bytes += 4 * Step) {
#pragma GCC unroll 4
            for (std::size_t i = 0; i < 4; ++i) pieces[i] = MoveOn(pieces[i], by512, LoadPiece(bytes + i * Step));
        }
        const __m128i by256 = Factors<256>();
        last = MoveOn(pieces[0], by256, pieces[2]);
        last = MoveOn(last, Factors<128>(), MoveOn(pieces[1], by256, pieces[3]));
    }
    return EndPieces(last, bytes, end);
}

constexpr std::size_t WideUnitWords = sizeof(__m256i) / sizeof(std::uint64_t);
constexpr std::size_t WideBlock = UnitCount * sizeof(__m256i);

FOR_WIDE_UNITS inline __m256i LoadUnit(const void* units, std::size_t i) noexcept {
    return _mm256_loadu_si256(static_cast<const __m256i*>(units) + i);
}

FOR_WIDE_UNITS void DivideBlocks(std::uint64_t* units, const unsigned char* message, std::size_t count) noexcept {
    for (; count > 0; --count, message += WideBlock) {
#pragma GCC unroll 32
        for (std::size_t i = 0; i < UnitCount; ++i) {
            // The quotient's units 32, 30, 26 and 25 before, in a ring of the last 32.
            const __m256i older = _mm256_xor_si256(LoadUnit(units, i), LoadUnit(units, (i + 2) % UnitCount));
            const __m256i newer =
                _mm256_xor_si256(LoadUnit(units, (i + 6) % UnitCount), LoadUnit(units, (i + 7) % UnitCount));
            const __m256i unit = _mm256_xor_si256(_mm256_xor_si256(older, newer), LoadUnit(message, i));
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(units) + i, unit);
        }
    }
    _mm256_zeroupper();
}

std::uint64_t WideUnits(std::uint64_t bits, const unsigned char* bytes, std::size_t size) noexcept {
    static const AppendBytes products = AppendByProducts();
    const AppendBytes appendRest = products != nullptr ? products : AppendByShifts;
    if (size < WideBlock) return appendRest(bits, bytes, size);
    alignas(32) std::uint64_t units[UnitCount * WideUnitWords];
    BeginUnits(units, WideUnitWords, bits);
    DivideBlocks(units, bytes, size / WideBlock);
    EndUnits(units, WideUnitWords);
    bits = appendRest(0, reinterpret_cast<const unsigned char*>(units), WideBlock);
    return appendRest(bits, bytes + size / WideBlock * WideBlock, size % WideBlock);
}

}  // namespace

AppendBytes zel::AppendByProducts() noexcept {
    return __builtin_cpu_supports("pclmul") && __builtin_cpu_supports("ssse3") ? Products : nullptr;
}

AppendBytes zel::AppendByWideUnits() noexcept {
    return __builtin_cpu_supports("avx2") ? WideUnits : nullptr;
}
