// The countdown of the hook, and the exported functions by which programs use the heap of the library.

#include "base/memory.h"

using namespace zel;

constinit std::atomic<int> zel::allocationCountdown{0};

void zel::FailAllocation(int number) noexcept {
    allocationCountdown.store(number, std::memory_order_relaxed);
}

void* ZELAllocate(std::size_t size) noexcept {
    return zel::Allocate(size);
}

void ZELFree(void* block) noexcept {
    zel::Free(block);
}
