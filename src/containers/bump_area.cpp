// The slow half of an area: from chunk to chunk.

#include "containers/bump_area.h"

#include "foundations/allocation.h"

void BumpArea::Use(Chunk* chunk) noexcept {
    _current = chunk;
    _next = reinterpret_cast<char*>(chunk + 1);
    _remaining = _chunkSize - sizeof(Chunk);
}

// Goes on to the next chunk; false when there is no memory for one.
bool BumpArea::Advance() noexcept {
    Chunk*& following = _current != nullptr ? _current->next : _first;
    if (following == nullptr) {
        Chunk* const made = static_cast<Chunk*>(Allocate(_chunkSize));
        if (made == nullptr) return false;
        made->next = nullptr;
        following = made;
    }
    Use(following);
    return true;
}

void BumpArea::Rewind() noexcept {
    if (_first != nullptr) Use(_first);
}
