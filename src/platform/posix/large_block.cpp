// Large blocks begin at a huge page and ask for such pages. When they move or grow later, they keep asking for them.

#include "platform/large_block.h"

#include <sys/mman.h>

#include <cstdint>
#include <cstdlib>

const std::size_t platform::MostInAdvance = SIZE_MAX;

void* platform::ResizeBlock(void* block, std::size_t size) noexcept {
    constexpr std::size_t HugePage = std::size_t{2} << 20;
    if (block != nullptr || size < 2 * HugePage) return std::realloc(block, size);
    void* aligned = nullptr;
    if (posix_memalign(&aligned, HugePage, size) != 0) return nullptr;
    madvise(aligned, size, MADV_HUGEPAGE);  // a kernel that has none serves small pages
    return aligned;
}
