// The heap, and a countdown that tests set: at 0, where it stays outside tests, nothing fails.

#include "base/memory.h"

#include <atomic>
#include <cstdlib>
#include <cstring>

#include "platform/large_block.h"

namespace {

// From here on zeros are written by hand, so that the block may lie where it is cheap to reach.
constexpr std::size_t LargeBlock = std::size_t{4} << 20;

constinit std::atomic<int> countdown{0};

}  // namespace

void FailAllocation(int number) noexcept {
    countdown.store(number, std::memory_order_relaxed);
}

bool IsAllocationFailureDue() noexcept {
    return countdown.load(std::memory_order_relaxed) > 0;
}

bool AllocationFails() noexcept {
    return IsAllocationFailureDue() && countdown.fetch_sub(1, std::memory_order_relaxed) == 1;
}

void* Allocate(std::size_t size) noexcept {
    return AllocationFails() ? nullptr : platform::ResizeBlock(nullptr, size);
}

void* AllocateZeroed(std::size_t size) noexcept {
    if (size < LargeBlock) return AllocationFails() ? nullptr : std::calloc(1, size);
    void* const block = Allocate(size);
    return block != nullptr ? std::memset(block, 0, size) : nullptr;
}
