// Zeros in a large block, for both targets.

#include "platform/large_block.h"

#include <cstring>

#include "base/memory.h"

using namespace zel;

void* zel::AllocateLargeZeroed(std::size_t size) noexcept {
    // Below this size the C library's own zeroed blocks are cheaper.
    constexpr std::size_t Large = std::size_t{4} << 20;
    if (size < Large) return AllocateZeroed(size);
    void* const block = ResizeLargeBlock(nullptr, size);
    return block != nullptr ? std::memset(block, 0, size) : nullptr;
}
