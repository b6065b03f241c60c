// The kernel's futex calls, private to the process.

#include "platform/waiting.h"

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <climits>

using namespace zel;

void zel::WaitOnWord(const ZELAtomic<std::uint32_t>& word, std::uint32_t value) noexcept {
    syscall(SYS_futex, &word, FUTEX_WAIT_PRIVATE, value, nullptr, nullptr, 0);
}

void zel::WakeOne(const ZELAtomic<std::uint32_t>& word) noexcept {
    syscall(SYS_futex, &word, FUTEX_WAKE_PRIVATE, 1, nullptr, nullptr, 0);
}

void zel::WakeAll(const ZELAtomic<std::uint32_t>& word) noexcept {
    syscall(SYS_futex, &word, FUTEX_WAKE_PRIVATE, INT_MAX, nullptr, nullptr, 0);
}
