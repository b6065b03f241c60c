// The copies of keys that maps keep themselves.
//
// Idea: a key lies behind a header with its hash and its length, so that a look-up rejects nearly every other key, and
// growth finds its way, without reading the text. Blocks are cut from an area in sizes by 16 bytes; a freed block waits
// in the list of its size for the next key. Longer keys go to the heap one by one.
//
// Invariants: the text is NUL-terminated and its header directly in front of it, in the same cache line; everything
// stays reachable from `keyStore`. Cost: a few instructions each way. Danger: one store for the process, without a
// lock.
#ifndef CONTAINERS_KEY_STORE_H
#define CONTAINERS_KEY_STORE_H

#include <emmintrin.h>  // SSE2 is part of every x86-64

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "containers/bump_area.h"
#include "containers/prefetch.h"
#include "foundations/text_search.h"

struct KeyHeader {
    std::uint32_t hash;
    std::uint32_t length;

    // One comparison of 8 bytes.
    friend bool operator==(KeyHeader left, KeyHeader right) noexcept {
        return std::bit_cast<std::uint64_t>(left) == std::bit_cast<std::uint64_t>(right);
    }
};

// Whether two texts of `size` bytes are the same: for keys, which are short, without a call.
inline bool SameKey(const char* left, const char* right, std::size_t size) noexcept {
    if (size <= SearchHeadSize) return SameHead(left, right, size);
    const auto sameStep = [left, right](std::size_t at) {
        const __m128i equal = _mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(left + at)),
                                             _mm_loadu_si128(reinterpret_cast<const __m128i*>(right + at)));
        return _mm_movemask_epi8(equal) == 0xFFFF;
    };
    std::size_t at = 0;
    while (at + 16 < size && sameStep(at)) at += 16;
    return at + 16 >= size && sameStep(size - 16);
}

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
        if (--_live == 0 && _area.IsWide()) StartOver();
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
    static void* TakeLarge(std::size_t size) noexcept;
    void StartOver() noexcept;

    BumpArea _area{256 * 1024};
    std::size_t _live = 0;  // blocks that hold a key
    void* _freed[LargestBlock / Grain] = {};
};

extern KeyStore keyStore;

#endif
