// The countdown of the hook, and the exported functions by which programs use the heap of the library.

#include "base/memory.h"

using namespace zel;

constinit std::atomic<int> zel::allocationCountdown{0};

namespace {

constinit std::atomic<bool> hasFailed{false};
constinit std::atomic<bool> goesOnFailing{false};

}  // namespace

void zel::FailAllocation(int number, Afterwards afterwards) noexcept {
    hasFailed = false;
    goesOnFailing = afterwards == Afterwards::Fail;
    allocationCountdown = number;
}

bool zel::HasAllocationFailed() noexcept {
    return hasFailed;
}

bool zel::CountAllocation() noexcept {
    const int left = allocationCountdown.fetch_sub(1);
    if (left > 1) return false;
    if (goesOnFailing) allocationCountdown = 1;
    const bool fails = left == 1 || goesOnFailing;  // another thread may have been the last to count
    if (fails) hasFailed = true;
    return fails;
}

void* ZELAllocate(std::size_t size) noexcept {
    return zel::Allocate(size);
}

void ZELFree(void* block) noexcept {
    zel::Free(block);
}
