// The rare steps of the store: the next chunk, and the start over.

#include "containers/block_store.h"

#include <algorithm>
#include <iterator>
#include <new>

#include "platform/large_block.h"

using namespace zel;

constinit BlockStore zel::blockStore;

void BumpArea::Use(Chunk* chunk) noexcept {
    _current = chunk;
    _next = reinterpret_cast<char*>(chunk + 1);
    _remaining = chunk->size - sizeof(Chunk);
}

// Goes on to the next chunk; false when there is no memory for one.
bool BumpArea::Advance() noexcept {
    Chunk*& following = _current != nullptr ? _current->next : _first;
    if (following == nullptr) {
        const std::size_t size = _current != nullptr ? std::min(2 * _current->size, LargestChunk) : FirstChunk;
        void* const made = ResizeLargeBlock(nullptr, size);
        if (made == nullptr) return false;
        following = new (made) Chunk{nullptr, size};
    }
    Use(following);
    return true;
}

void BumpArea::Rewind() noexcept {
    if (_first != nullptr) Use(_first);
}

void BlockStore::StartOver() noexcept {
    std::fill(std::begin(_freed), std::end(_freed), nullptr);
    _area.Rewind();
}
