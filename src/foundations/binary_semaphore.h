// The lock word behind every lock of the library: 0 free, 1 taken, 2 taken and perhaps awaited.
//
// A release wakes somebody only from state 2, so that an uncontended pair costs two atomic operations. A waiter that
// gets the lock leaves it in state 2, since it cannot know whether others wait too: one superfluous wake-up at the
// end of a contention is the price.
#ifndef FOUNDATIONS_BINARY_SEMAPHORE_H
#define FOUNDATIONS_BINARY_SEMAPHORE_H

#include <atomic>
#include <cstdint>

void AcquireSemaphore(std::atomic<std::uint32_t>& state) noexcept;
// False when it was free: then nothing changes.
bool ReleaseSemaphore(std::atomic<std::uint32_t>& state) noexcept;

#endif
