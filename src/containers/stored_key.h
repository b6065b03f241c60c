// The copy of a key as maps without a pool keep it: behind a header with its hash and its length, so that a look-up
// rejects nearly every other key, and growth finds its way, without reading the text.
#ifndef CONTAINERS_STORED_KEY_H
#define CONTAINERS_STORED_KEY_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "base/bytes16.h"
#include "foundations/text_search.h"

namespace zel {

struct KeyHeader {
    std::uint32_t hash;
    std::uint32_t length;

    // One comparison of 8 bytes.
    friend bool operator==(KeyHeader left, KeyHeader right) noexcept {
        return std::bit_cast<std::uint64_t>(left) == std::bit_cast<std::uint64_t>(right);
    }
};

// Longer ones would not fit the header.
inline constexpr std::size_t MaxKeyLength = 0x7FFFFFFF;

inline constexpr std::size_t StoredKeySize(std::size_t length) noexcept {
    return sizeof(KeyHeader) + length + 1;
}

// Writes header, text and terminator to a block of StoredKeySize() bytes; gives the text.
inline char* StoreKey(void* block, std::string_view key, std::uint32_t hash) noexcept {
    const KeyHeader header{hash, static_cast<std::uint32_t>(key.size())};
    std::memcpy(block, &header, sizeof header);
    char* const text = static_cast<char*>(block) + sizeof header;
    std::memcpy(text, key.data(), key.size());
    text[key.size()] = '\0';
    return text;
}

inline KeyHeader HeaderOf(const char* storedKey) noexcept {
    KeyHeader header;
    std::memcpy(&header, storedKey - sizeof header, sizeof header);
    return header;
}

// Whether two texts of `size` bytes are the same: for keys, which are short, without a call.
inline bool SameKey(const char* left, const char* right, std::size_t size) noexcept {
    if (size <= SearchHeadSize) return SameHead(left, right, size);
    const auto sameStep = [left, right](std::size_t at) {
        return ByteMask(EqualBytes(LoadBytes(left + at), LoadBytes(right + at))) == 0xFFFF;
    };
    std::size_t at = 0;
    while (at + 16 < size && sameStep(at)) at += 16;
    return at + 16 >= size && sameStep(size - 16);
}

}  // namespace zel

#endif
