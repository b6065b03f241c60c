// The four printable bytes before a block; docs/wire.md describes them.
#ifndef NETWORK_BLOCK_HEADER_H
#define NETWORK_BLOCK_HEADER_H

namespace zel {

inline constexpr int BlockHeaderSize = 4;
// The longest payload that a header can express.
inline constexpr int MostBlockBytes = (1 << 24) - 1;

inline constexpr int BlockHeaderBlank = 32;
inline constexpr int BlockHeaderNegativeBit = 64;

inline void EncodeBlockHeader(int value, char (&bytes)[BlockHeaderSize]) noexcept {
    const int sign = value < 0 ? BlockHeaderNegativeBit : 0;
    for (char& byte : bytes) {
        byte = static_cast<char>(((value & 63) | sign) + BlockHeaderBlank);
        value /= 64;
    }
}

// Total: any four bytes are a value between -2^26 and 2^26.
inline int DecodeBlockHeader(const char (&bytes)[BlockHeaderSize]) noexcept {
    int value = 0;
    int sign = 0;
    for (int i = BlockHeaderSize - 1; i >= 0; --i) {
        const int digit = static_cast<unsigned char>(bytes[i]) - BlockHeaderBlank;
        value = value * 64 + digit;
        sign |= digit & BlockHeaderNegativeBit;
    }
    return sign != 0 ? -value : value;
}

}  // namespace zel

#endif
