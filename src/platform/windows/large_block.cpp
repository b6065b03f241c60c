// Large pages need a right that tools do not have, and a block counts as used memory as soon as it is had.

#include "platform/large_block.h"

#include <cstdlib>

const std::size_t platform::MostInAdvance = std::size_t{64} << 20;

void* platform::ResizeBlock(void* block, std::size_t size) noexcept {
    return std::realloc(block, size);
}
