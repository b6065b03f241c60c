// Run lengths and the checksum by their definitions, one byte or bit at a time.
#ifndef TESTS_NETWORK_CODES_MODEL_H
#define TESTS_NETWORK_CODES_MODEL_H

#include "TARunLength.h"
#include "support/testing.h"

using Bytes = std::vector<unsigned char>;

inline const char* const overflow = "Output overflow\n";
inline const char* const truncated = "Input data has been truncated\n";

inline void SetHeader(Bytes& stream, std::size_t size) {
    for (int i = 0; i < 4; ++i) stream[static_cast<std::size_t>(i)] = static_cast<unsigned char>(size >> (8 * i));
}

// The format's steps, one byte at a time and without bounds.
inline Bytes Compressed(const Bytes& in) {
    Bytes out(4);
    const auto put = [&](std::size_t code) { out.push_back(static_cast<unsigned char>(code)); };
    for (std::size_t at = 0; at < in.size();) {
        std::size_t zeros = 0, ones = 0;
        for (; at < in.size() && in[at] == 0x00; ++at) ++zeros;
        for (std::size_t units = zeros / 128; units > 0; units -= std::min<std::size_t>(units, 63))
            put(127 + std::min<std::size_t>(units, 63));
        if (zeros % 128 != 0) put(zeros % 128);
        for (; at < in.size() && in[at] == 0xFF; ++at) ++ones;
        for (; ones > 0; ones -= std::min<std::size_t>(ones, 65)) put(190 + std::min<std::size_t>(ones, 65));
        for (; at < in.size() && in[at] != 0x00 && in[at] != 0xFF; ++at) {
            put(0);
            put(in[at]);
        }
    }
    SetHeader(out, out.size());
    return out;
}

struct Expansion {
    int result;
    Bytes bytes;  // what was written
    std::string message;
};

inline Expansion Expanded(const Bytes& stream, int capacity) {
    Bytes out;
    long long rest = rle_compressed_size(const_cast<unsigned char*>(stream.data())) - 5LL;
    for (std::size_t at = 4; rest >= 0; --rest) {
        const int code = stream[at++];
        if (code == 0 && --rest < 0) return {1, out, truncated};
        const auto position = static_cast<long long>(out.size());
        const int length = code == 0 ? 0 : code < 128 ? code : code < 191 ? (code - 127) * 128 : code - 190;
        if (position + length > capacity) return {1, out, overflow};
        if (code == 0)
            out.push_back(stream[at++]);
        else
            out.insert(out.end(), static_cast<std::size_t>(length), code < 191 ? 0x00 : 0xFF);
    }
    return {static_cast<int>(out.size()), out, ""};
}

// The remainder of further bits, highest first.
inline unsigned Feed(unsigned remainder, unsigned units, int bits) {
    for (int bit = bits - 1; bit >= 0; --bit)
        remainder = (remainder << 1 | (units >> bit & 1)) ^ (remainder >> 31 != 0 ? 0xC5U : 0U);
    return remainder;
}

#endif
