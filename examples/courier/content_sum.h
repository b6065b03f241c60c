// A checksum of the content of a file, block by block, by the library's `crc`.
#ifndef EXAMPLES_COURIER_CONTENT_SUM_H
#define EXAMPLES_COURIER_CONTENT_SUM_H

#include <cstddef>
#include <vector>

#include "ZELString.h"

class ContentSum {
public:
    // The sum depends on where one block ends and the next begins: both ends of a transfer add the same blocks.
    void Add(const char* block, std::size_t size);
    // Eight hexadecimal digits.
    ZELString Text() const;

private:
    unsigned int _sum = 0;
    std::vector<char> _text;  // the block as `crc` takes it
};

#endif
