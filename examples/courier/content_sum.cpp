// `crc` takes a C text, which ends at its first zero byte. So a block is summed with ones in place of its zeros, and
// the places of the zeros go in by the number that `crc` takes besides. That number is merely added by exclusive or:
// the sum so far is multiplied on its way there, or blocks that changed places would not be noticed.

#include "content_sum.h"

#include <cstdio>

#include "TARunLength.h"

void ContentSum::Add(const char* block, std::size_t size) {
    constexpr unsigned int Odd = 0x9E3779B1;
    if (_text.size() <= size) _text.resize(size + 1);
    unsigned int zeros = 0;
    for (std::size_t i = 0; i < size; ++i) {
        const bool isZero = block[i] == 0;
        _text[i] = isZero ? '\1' : block[i];
        zeros += isZero ? static_cast<unsigned int>(i + 1) * Odd : 0;
    }
    _text[size] = '\0';
    _sum = crc(_text.data(), _sum * Odd + zeros);
}

ZELString ContentSum::Text() const {
    char text[9];
    std::snprintf(text, sizeof text, "%08x", _sum);
    return text;
}
