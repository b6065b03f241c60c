// Small blocks for the entries of all maps, in sizes by 16 bytes.
//
// Idea: blocks are cut from an area; a freed block waits in the list of its size for the next one who asks. Once none
// is in use the area starts over, so that a process that makes large maps again and again finds its blocks in order.
//
// Invariants: a block of at most 64 bytes lies in one cache line; everything stays reachable from `blockStore`. Cost: a
// few instructions each way. Danger: one store for the process, without a lock.
#ifndef CONTAINERS_BLOCK_STORE_H
#define CONTAINERS_BLOCK_STORE_H

#include <cstddef>
#include <cstring>

#include "base/compiler.h"
#include "containers/bump_area.h"

namespace zel {

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
