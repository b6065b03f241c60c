// The system's waits on addresses.

#include "platform/waiting.h"

#include <windows.h>

namespace {

void* AddressOf(const std::atomic<std::uint32_t>& word) {
    return const_cast<std::atomic<std::uint32_t>*>(&word);
}

}  // namespace

void platform::WaitOnWord(const std::atomic<std::uint32_t>& word, std::uint32_t value) noexcept {
    WaitOnAddress(AddressOf(word), &value, sizeof value, INFINITE);
}

void platform::WakeOne(const std::atomic<std::uint32_t>& word) noexcept {
    WakeByAddressSingle(AddressOf(word));
}

void platform::WakeAll(const std::atomic<std::uint32_t>& word) noexcept {
    WakeByAddressAll(AddressOf(word));
}
