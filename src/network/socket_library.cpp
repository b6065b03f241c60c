// One answer for the whole process, and a switch that only tests set.

#include "network/socket_library.h"

#include <atomic>

#include "platform/sockets.h"

using namespace zel;

namespace {

constinit std::atomic<bool> isDenied{false};

}  // namespace

bool zel::HasSockets() noexcept {
    return StartSockets() && !isDenied.load(std::memory_order_relaxed);
}

void zel::PretendNoSockets(bool isPretended) noexcept {
    isDenied.store(isPretended, std::memory_order_relaxed);
}
