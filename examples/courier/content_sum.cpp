// `crc` takes a C text, which ends at its first zero byte. So a block is summed with ones in place of its zeros, and
// the places of the zeros go in by the number that `crc` takes besides. That number is merely added by exclusive or:
// the sum so far is multiplied on its way there, or blocks that changed places would not be noticed.

#include "content_sum.h"

#include <cstdio>

#include "TARunLength.h"

void ContentSum::Add(const char* block, std::size_t size) {
    constexpr unsigned int Odd = 0x9E3779B1;
    if (_text.size() <= size) _text.resize(size + 1);
    char* const text = _text.data();
    unsigned int zeros = 0, place = 0;
    for (std::size_t i = 0; i < size; ++i) {  // without branches, so that compilers take many bytes at once
        const unsigned int isZero = block[i] == 0;
        place += Odd;
        zeros += place & (0 - isZero);
        text[i] = static_cast<char>(block[i] + static_cast<char>(isZero));
    }
    text[size] = '\0';
    _sum = crc(text, _sum * Odd + zeros);
}

ZELString ContentSum::Text() const {
    char text[9];
    std::snprintf(text, sizeof text, "%08x", _sum);
    return text;
}
