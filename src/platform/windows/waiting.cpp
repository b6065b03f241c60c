// The system's waits on addresses.

#include "platform/waiting.h"

#include <windows.h>

using namespace zel;

namespace {

void* AddressOf(const ZELAtomic<std::uint32_t>& word) {
    return const_cast<ZELAtomic<std::uint32_t>*>(&word);
}

}  // namespace

void zel::WaitOnWord(const ZELAtomic<std::uint32_t>& word, std::uint32_t value) noexcept {
    WaitOnAddress(AddressOf(word), &value, sizeof value, INFINITE);
}

void zel::WakeOne(const ZELAtomic<std::uint32_t>& word) noexcept {
    WakeByAddressSingle(AddressOf(word));
}

void zel::WakeAll(const ZELAtomic<std::uint32_t>& word) noexcept {
    WakeByAddressAll(AddressOf(word));
}
