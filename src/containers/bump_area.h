// Memory that is cut from the front of large chunks and never given back one by one.
//
// Idea: a pointer moves on; at the end of a chunk the next one is taken, made if there is none. Rewind() starts over
// with the first chunk once nothing of the area is in use: what is handed out then lies in order again. Without
// that, memory that went through lists of free pieces comes back scattered, and each use of it waits for the memory.
//
// Invariants: chunks have one size and begin with a pointer to the next one; all are reachable from the first.
#ifndef CONTAINERS_BUMP_AREA_H
#define CONTAINERS_BUMP_AREA_H

#include <cstddef>

class BumpArea {
public:
    // `chunkSize` includes what a chunk begins with.
    explicit constexpr BumpArea(std::size_t chunkSize) noexcept : _chunkSize(chunkSize) {}

    // `size` bytes, a multiple of 8 that a chunk holds; null when there is no memory.
    void* Take(std::size_t size) noexcept {
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
    // As far as the strictest fundamental type, so that pieces of 16 bytes never cross a cache line.
    struct alignas(16) Chunk {
        Chunk* next;
    };

    bool Advance() noexcept;
    void Use(Chunk* chunk) noexcept;

    std::size_t _chunkSize;
    char* _next = nullptr;
    std::size_t _remaining = 0;
    Chunk* _first = nullptr;
    Chunk* _current = nullptr;  // the one that is being cut
};

#endif
