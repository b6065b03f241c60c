#include "foundations/binary_semaphore.h"

#include "platform/waiting.h"

namespace {

enum : std::uint32_t { Free = 0, Taken = 1, Awaited = 2 };

}  // namespace

void AcquireSemaphore(std::atomic<std::uint32_t>& state) noexcept {
    std::uint32_t seen = Free;
    if (state.compare_exchange_strong(seen, Taken, std::memory_order_acquire, std::memory_order_relaxed)) return;
    while (state.exchange(Awaited, std::memory_order_acquire) != Free) platform::WaitOnWord(state, Awaited);
}

bool ReleaseSemaphore(std::atomic<std::uint32_t>& state) noexcept {
    // The word may be gone as soon as it is free: the wake-up uses its address alone.
    const std::uint32_t before = state.exchange(Free, std::memory_order_release);
    if (before == Awaited) platform::WakeOne(state);
    return before != Free;
}
