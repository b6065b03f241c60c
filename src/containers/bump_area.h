// Memory that is cut from the front of large chunks and never given back one by one.
//
// Idea: a pointer moves on; at the end of a chunk the next one is taken, made if there is none: twice as large as the
// one before, up to a size that the system serves by large pages. Rewind() starts over with the first chunk once
// nothing of the area is in use: what is handed out then lies in order again. Without that, memory that went through
// lists of free pieces comes back scattered, and each use of it waits for the memory.
//
// Invariants: chunks begin with a pointer to the next one; all are reachable from the first.
#ifndef CONTAINERS_BUMP_AREA_H
#define CONTAINERS_BUMP_AREA_H

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace zel {

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

}  // namespace zel

#endif
