// One compare and exchange each way while nobody waits. The dangerous case is a word that ends as soon as it is free:
// whoever takes it may destroy it, so nothing but its address is used behind a release.

#include "threads/binary_semaphore.h"

#include "platform/waiting.h"

using namespace zel;

namespace {

enum : std::uint32_t { Free = 0, Taken = 1, Awaited = 2, Closed = 3 };

}  // namespace

bool zel::AcquireSemaphore(ZELAtomic<std::uint32_t>& state) noexcept {
    std::uint32_t seen = Free;
    if (state.compare_exchange_strong(seen, Taken, std::memory_order_acquire)) return true;
    while (seen != Closed) {
        // Awaited also when it is free now: this thread may not be the only one that waited.
        if (!state.compare_exchange_strong(seen, Awaited, std::memory_order_acquire)) continue;
        if (seen == Free) return true;
        WaitOnWord(state, Awaited);
        seen = state.load(std::memory_order_relaxed);
    }
    return false;
}

bool zel::ReleaseSemaphore(ZELAtomic<std::uint32_t>& state) noexcept {
    std::uint32_t seen = Taken;
    while (!state.compare_exchange_strong(seen, Free, std::memory_order_release))
        if (seen == Free || seen == Closed) return false;
    // The word may be gone as soon as it is free: the wake-up uses its address alone.
    if (seen == Awaited) WakeOne(state);
    return true;
}

void zel::CloseSemaphore(ZELAtomic<std::uint32_t>& state) noexcept {
    if (state.exchange(Closed) == Awaited) WakeAll(state);
}
