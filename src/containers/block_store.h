// Small blocks for the entries of all maps, in sizes by 16 bytes.
//
// Idea: blocks are cut from an area of large chunks. A freed block waits in the list of its size for the next request.
// Once no block is in use the area starts over, so that a process that creates large maps repeatedly finds its blocks
// in order. Without that, blocks from the lists come back scattered, and each use of one waits for the memory.
//
// Invariants: a block of at most 64 bytes is in one cache line. Everything stays reachable from `blockStore`.
// Cost: a few instructions each way.
// Hazard: one store for the process, without a lock.
#ifndef CONTAINERS_BLOCK_STORE_H
#define CONTAINERS_BLOCK_STORE_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "base/compiler.h"

namespace zel {

// Memory that is cut from the front of large chunks and never given back one by one. Each chunk is twice as large as
// the one before, up to a size that the system serves by large pages. All chunks are reachable from the first.
class BumpArea {
public:
    // `size` bytes, a multiple of 16 that a chunk holds, in one cache line where they fit into one; null when there is
    // no memory.
    void* Take(std::size_t size) noexcept {
        const std::size_t place = reinterpret_cast<std::uintptr_t>(_next) % LineSize;
        if (size <= LineSize && place + size > LineSize) Skip(LineSize - place);
        if (size > _remaining && !Advance()) return nullptr;
        char* const taken = _next;
        _next += size;
        _remaining -= size;
        return taken;
    }
    // Whether more than one chunk is in use; before that nothing lies far from anything.
    bool IsWide() const noexcept { return _current != _first; }
    void Rewind() noexcept;

private:
    static constexpr std::size_t LineSize = 64;

    static constexpr std::size_t FirstChunk = std::size_t{256} << 10;
    static constexpr std::size_t LargestChunk = std::size_t{4} << 20;

    struct alignas(16) Chunk {
        Chunk* next;
        std::size_t size;  // all of it
    };

    void Skip(std::size_t size) noexcept {
        size = std::min(size, _remaining);
        _next += size;
        _remaining -= size;
    }
    bool Advance() noexcept;
    void Use(Chunk* chunk) noexcept;

    char* _next = nullptr;
    std::size_t _remaining = 0;
    Chunk* _first = nullptr;
    Chunk* _current = nullptr;  // the one that is being cut
};

class BlockStore {
public:
    static constexpr std::size_t LargestBlock = 1024;

    // `size` bytes, from 8 to LargestBlock, on a multiple of 16; null when there is no memory.
    void* Take(std::size_t size) noexcept {
        void*& freed = _freed[ClassOf(size)];
        void* block = freed;
        if (block != nullptr) {
            std::memcpy(&freed, block, sizeof freed);
            // Freed blocks lie anywhere: the next one shall have arrived when its turn comes.
            Prefetch(freed);
        } else {
            block = _area.Take((ClassOf(size) + 1) * Grain);
        }
        _live += block != nullptr ? 1 : 0;
        return block;
    }

    // Takes back what Take() gave for `size`.
    void Drop(void* block, std::size_t size) noexcept {
        void*& freed = _freed[ClassOf(size)];
        std::memcpy(block, &freed, sizeof freed);
        freed = block;
        if (--_live == 0 && _area.IsWide()) StartOver();
    }

private:
    static constexpr std::size_t Grain = 16;

    static std::size_t ClassOf(std::size_t size) noexcept { return (size - 1) / Grain; }
    void StartOver() noexcept;

    BumpArea _area;
    std::size_t _live = 0;  // blocks in use
    void* _freed[LargestBlock / Grain] = {};
};

extern BlockStore blockStore;

}  // namespace zel

#endif
