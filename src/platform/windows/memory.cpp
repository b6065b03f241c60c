// Large pages need a right that tools do not have.

#include "platform/memory.h"

#include <cstdlib>

void* platform::ResizeBlock(void* block, std::size_t size) noexcept {
    return std::realloc(block, size);
}
