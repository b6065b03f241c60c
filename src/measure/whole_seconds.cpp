// The C runtime's time, which costs a nanosecond where a precise clock costs twenty, and a moment that tests set.

#include "measure/whole_seconds.h"

#include <atomic>
#include <ctime>

using namespace zel;

namespace {

constinit std::atomic<std::int64_t> held{-1};

}  // namespace

std::int64_t zel::SecondsNow() noexcept {
    const std::int64_t moment = held.load(std::memory_order_relaxed);
    return moment < 0 ? std::time(nullptr) : moment;
}

void zel::HoldTime(std::int64_t seconds) noexcept {
    held.store(seconds, std::memory_order_relaxed);
}
