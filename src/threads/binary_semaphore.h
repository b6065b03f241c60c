// The lock word behind every lock of the library: 0 free, 1 taken, 2 taken and perhaps awaited, 3 closed.
//
// A release wakes somebody only from state 2, so that an uncontended pair costs two atomic operations. A waiter that
// gets the lock leaves it in state 2, since it cannot know whether others wait too: one superfluous wake-up at the
// end of a contention is the price. Nothing leads out of state 3.
#ifndef THREADS_BINARY_SEMAPHORE_H
#define THREADS_BINARY_SEMAPHORE_H

#include <cstdint>

#include "ZELAtomic.h"

namespace zel {

// False when it is or becomes closed: then nothing was taken.
bool AcquireSemaphore(ZELAtomic<std::uint32_t>& state) noexcept;
// False when it was free or closed: then nothing changes.
bool ReleaseSemaphore(ZELAtomic<std::uint32_t>& state) noexcept;
// Ends every wait, also to come. Waking uses the address of the word alone.
void CloseSemaphore(ZELAtomic<std::uint32_t>& state) noexcept;

}  // namespace zel

#endif
