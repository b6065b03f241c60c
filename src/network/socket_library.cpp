// One answer for the whole process, and a switch that only tests set.

#include "network/socket_library.h"

#include <atomic>

#include "platform/sockets.h"

namespace {

constinit std::atomic<bool> isDenied{false};

}  // namespace

bool HasSockets() noexcept {
    return platform::StartSockets() && !isDenied.load(std::memory_order_relaxed);
}

void PretendNoSockets(bool isPretended) noexcept {
    isDenied.store(isPretended, std::memory_order_relaxed);
}
