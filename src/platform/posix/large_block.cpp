// Large blocks begin at a huge page and ask for such pages. When they move or grow later, they keep asking for them.

#include "platform/large_block.h"

#include <sys/mman.h>

#include <cstdint>
#include <cstdlib>

#include "base/memory.h"

using namespace zel;

const std::size_t zel::MostInAdvance = SIZE_MAX;

void* zel::ResizeLargeBlock(void* block, std::size_t size) noexcept {
    constexpr std::size_t HugePage = std::size_t{2} << 20;
    if (block != nullptr || size < 2 * HugePage) return Reallocate(block, size);
    void* aligned = nullptr;
    if (AllocationFails() || posix_memalign(&aligned, HugePage, size) != 0) return nullptr;
    madvise(aligned, size, MADV_HUGEPAGE);  // a kernel that has none serves small pages
    return aligned;
}
