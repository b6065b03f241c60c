// Large blocks of memory: the texts of whole files, the tables and entries of large maps.
#ifndef PLATFORM_LARGE_BLOCK_H
#define PLATFORM_LARGE_BLOCK_H

#include <cstddef>

namespace zel {

// Reallocate() of base/memory.h, hook included, for a block that may be large. A new large block is placed so that the
// system fills it in few steps and reaches any address in it fast: page faults are three quarters of the time that
// reading 64 MiB takes, and a look-up among a million entries waits for the address of a page as long as for the page.
void* ResizeLargeBlock(void* block, std::size_t size) noexcept;

// A new block of zeros that may be large.
void* AllocateLargeZeroed(std::size_t size) noexcept;

// The largest block that may be allocated before its contents have arrived, because a file claims to have that size:
// no limit where a block uses memory only as it is filled.
extern const std::size_t MostInAdvance;

}  // namespace zel

#endif
