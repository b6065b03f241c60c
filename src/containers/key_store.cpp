// The slow half of the store of keys.

#include "containers/key_store.h"

#include <algorithm>

#include "foundations/allocation.h"

constinit KeyStore keyStore;

void* KeyStore::TakeLarge(std::size_t size) noexcept {
    return size <= sizeof(KeyHeader) + MaxLength + 1 ? Allocate(size) : nullptr;
}

void KeyStore::StartOver() noexcept {
    std::fill(std::begin(_freed), std::end(_freed), nullptr);
    _area.Rewind();
}
