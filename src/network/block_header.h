// The four printable bytes in front of a block; docs/wire.md tells how they are made.
#ifndef NETWORK_BLOCK_HEADER_H
#define NETWORK_BLOCK_HEADER_H

namespace zel {

// In a namespace, since the names are common.
namespace block_header {

inline constexpr int Size = 4;
// The longest payload that a header can tell.
inline constexpr int MostBytes = (1 << 24) - 1;

inline constexpr int Blank = 32;
inline constexpr int NegativeBit = 64;

inline void Encode(int value, char (&bytes)[Size]) noexcept {
    const int sign = value < 0 ? NegativeBit : 0;
    for (char& byte : bytes) {
        byte = static_cast<char>(((value & 63) | sign) + Blank);
        value /= 64;
    }
}

// Total: every four bytes tell something between -2^26 and 2^26.
inline int Decode(const char (&bytes)[Size]) noexcept {
    int value = 0;
    int sign = 0;
    for (int i = Size - 1; i >= 0; --i) {
        const int digit = static_cast<unsigned char>(bytes[i]) - Blank;
        value = value * 64 + digit;
        sign |= digit & NegativeBit;
    }
    return sign != 0 ? -value : value;
}

}  // namespace block_header

}  // namespace zel

#endif
