// The slow half of the store of keys: large blocks, of which nothing is ever given back.

#include "containers/key_store.h"

#include "foundations/allocation.h"

namespace {

// Above the size from which heaps ask the system for pages of their own: what is not used costs nothing.
constexpr std::size_t ChunkSize = 256 * 1024;

}  // namespace

constinit KeyStore keyStore;

void* KeyStore::TakeLarge(std::size_t size) noexcept {
    return size <= sizeof(KeyHeader) + MaxLength + 1 ? Allocate(size) : nullptr;
}

bool KeyStore::AddChunk() noexcept {
    char* const chunk = static_cast<char*>(Allocate(ChunkSize));
    if (chunk == nullptr) return false;
    std::memcpy(chunk, &_chunks, sizeof _chunks);
    _chunks = chunk;
    _next = chunk + Grain;
    _remaining = ChunkSize - Grain;
    return true;
}
