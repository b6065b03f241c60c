// The copies of keys that maps keep themselves.
//
// Idea: a key lies behind a header with its hash and its length, so that a look-up rejects nearly every other key, and
// growth finds its way, without reading the text. Blocks are cut from large ones in sizes by 16 bytes; a freed block
// waits in the list of its size for the next key. Longer keys go to the heap one by one.
//
// Invariants: the text is NUL-terminated and its header directly in front of it; everything stays reachable from
// `keyStore`. Cost: a few instructions each way. Danger: one store for the process, without a lock.
#ifndef CONTAINERS_KEY_STORE_H
#define CONTAINERS_KEY_STORE_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "containers/prefetch.h"

struct KeyHeader {
    std::uint32_t hash;
    std::uint32_t length;
};

class KeyStore {
public:
    // Longer ones would not fit the header.
    static constexpr std::size_t MaxLength = 0x7FFFFFFF;

    // A copy of `key` with its hash in front; null when there is no memory.
    char* Store(std::string_view key, std::uint32_t hash) noexcept {
        const std::size_t size = sizeof(KeyHeader) + key.size() + 1;
        void* const block = TakeBlock(size);
        if (block == nullptr) return nullptr;
        const KeyHeader header{hash, static_cast<std::uint32_t>(key.size())};
        std::memcpy(block, &header, sizeof header);
        char* const text = static_cast<char*>(block) + sizeof header;
        std::memcpy(text, key.data(), key.size());
        text[key.size()] = '\0';
        return text;
    }

    // Takes back what Store() gave.
    void Drop(char* key) noexcept {
        void* const block = key - sizeof(KeyHeader);
        const std::size_t size = sizeof(KeyHeader) + HeaderOf(key).length + 1;
        if (size > LargestBlock) return std::free(block);
        void*& freed = _freed[ClassOf(size)];
        std::memcpy(block, &freed, sizeof freed);
        freed = block;
    }

    static KeyHeader HeaderOf(const char* key) noexcept {
        KeyHeader header;
        std::memcpy(&header, key - sizeof header, sizeof header);
        return header;
    }

private:
    static constexpr std::size_t Grain = 16;
    static constexpr std::size_t LargestBlock = 1024;

    static std::size_t ClassOf(std::size_t size) noexcept { return (size - 1) / Grain; }

    void* TakeBlock(std::size_t size) noexcept {
        if (size > LargestBlock) return TakeLarge(size);
        void*& freed = _freed[ClassOf(size)];
        if (void* const block = freed) {
            std::memcpy(&freed, block, sizeof freed);
            // Freed blocks lie anywhere: the next one shall have arrived when its turn comes.
            Prefetch(freed);
            return block;
        }
        const std::size_t rounded = (ClassOf(size) + 1) * Grain;
        if (rounded > _remaining && !AddChunk()) return nullptr;
        char* const block = _next;
        _next += rounded;
        _remaining -= rounded;
        return block;
    }
    static void* TakeLarge(std::size_t size) noexcept;
    bool AddChunk() noexcept;

    char* _next = nullptr;  // what is left of the newest chunk
    std::size_t _remaining = 0;
    void* _chunks = nullptr;  // the newest; each begins with a pointer to the one before it
    void* _freed[LargestBlock / Grain] = {};
};

extern KeyStore keyStore;

#endif
