// Run-length coding of bytes that are mostly 0x00 or 0xFF, and a 32-bit checksum of a text and a number.
//
// The coder serves bitmaps, masks and sparse tables: it is a single pass, keeps no state and allocates nothing. It is
// not meant for text or for what is compressed already: each byte other than 0x00 and 0xFF becomes two.
//
//     std::vector<unsigned char> packed(rle_max_compressed_size(size));
//     const int length = rle_compress(size, mask, static_cast<int>(packed.size()), packed.data());
//     const int count = rle_uncompress(packed.data(), size, mask);  // `size` again
//
// A compressed stream begins with its own total size, header included, in 4 bytes, least significant first. Codes
// follow, without an end mark:
//
//     0 and a byte   that byte, for 0x01 to 0xFE
//     1 to 127       so many zero bytes
//     128 to 190     (code - 127) * 128 zero bytes
//     191 to 255     (code - 190) bytes 0xFF
//
// A result of 1 is ambiguous: both coders give it after a failure, and an expansion gives it for one byte. Tell them
// apart by the size that is expected; the message on standard error says which failure it was.
// Any number of threads may call these functions. Input and output must not overlap.
#ifndef TARUNLENGTH_H
#define TARUNLENGTH_H

#include "ZELExport.h"

// Writes the stream of `inSize` bytes to `out`, which has room for `outCapacity`; nothing behind the stream is written.
// Returns the stream's size, at least 4. When it does not fit, "Output overflow" goes to standard error and the result
// is 1; `out` may then hold anything but its end is not passed. A negative size, or a null `in`, counts as no bytes; a
// negative capacity, or a null `out`, as no room.
ZEL_API int rle_compress(int inSize, unsigned char* in, int outCapacity, unsigned char* out) noexcept;

// Expands the stream at `in`, as long as its header tells and no byte further, into `out`, which has room for
// `outCapacity` bytes. Returns the number of bytes written; nothing behind them is touched. A header that tells less
// than one code, or 2^31 and more, expands to 0 bytes, as does a null `in`.
// When the output does not fit ("Output overflow" on standard error) or the last code lacks its byte ("Input data has
// been truncated") the result is 1; `out` then holds what was expanded before, and anything behind that.
// ONE BYTE MORE: a byte with code 0 is still written when exactly `outCapacity` bytes are there already, so `out` needs
// room for one byte more than `outCapacity` unless the stream is trusted. No byte follows that one.
// The header is believed: who reads streams from elsewhere first compares rle_compressed_size with what arrived. No
// stream expands to more than 8064 times its size.
ZEL_API int rle_uncompress(unsigned char* in, int outCapacity, unsigned char* out) noexcept;

// The total size that the 4 bytes of a stream's header tell, header included; 0 for null. Negative from 2^31 on.
ZEL_API int rle_compressed_size(unsigned char* in) noexcept;

// The room that serves every input of that size: 4 + 2 * `inSize`, at most 2^31 - 1; 4 for a negative size.
ZEL_API int rle_max_compressed_size(int inSize) noexcept;

// The remainder of the bits of `text`, without its terminator, and then those of `number`, highest first, modulo the
// polynomial x^32 + x^7 + x^6 + x^2 + 1 (0xC5): no start value, no inversion, no reflection. With `number` 0 that is
// the plain 32-bit checksum of the text; another number mixes a key or an earlier checksum in. It finds accidents, not
// forgeries. A null `text` counts as the empty one: crc("", n) is n.
ZEL_API unsigned int crc(const char* text, unsigned int number) noexcept;

#endif
