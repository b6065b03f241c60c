// Large blocks of memory: the texts of whole files, the tables and entries of large maps.
#ifndef PLATFORM_LARGE_BLOCK_H
#define PLATFORM_LARGE_BLOCK_H

#include <cstddef>

namespace platform {

// std::realloc, and the result is given back by std::free like any other; but a new block that is large lies so that
// the system can fill it in few steps and reach any place of it fast. (Page faults are three quarters of the time that
// reading 64 MiB takes, and a look-up among a million entries waits for the address of a page as long as for the page.)
void* ResizeBlock(void* block, std::size_t size) noexcept;

// What a block may have in advance, for no more reason than that somebody says it will be needed: anything where a
// block takes memory only as it is filled, else a bounded size.
extern const std::size_t MostInAdvance;

}  // namespace platform

#endif
