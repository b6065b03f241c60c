// Large pages need a right that tools do not have, and a block counts as used memory as soon as it is had.

#include "platform/large_block.h"

#include "base/memory.h"

using namespace zel;

const std::size_t zel::MostInAdvance = std::size_t{64} << 20;

void* zel::ResizeLargeBlock(void* block, std::size_t size) noexcept {
    return Reallocate(block, size);
}
