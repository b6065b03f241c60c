// A growing run of bytes with a NUL behind it: for paths that grow and shrink at their end, names that wait, and blocks
// that are written piece by piece.
#ifndef FILES_BYTE_BUFFER_H
#define FILES_BYTE_BUFFER_H

#include <cstddef>
#include <string_view>

#include "base/memory.h"

namespace zel {

class ByteBuffer {
public:
    ByteBuffer() noexcept = default;
    ByteBuffer(const ByteBuffer&) = delete;
    ByteBuffer& operator=(const ByteBuffer&) = delete;
    ~ByteBuffer() { Free(_bytes); }

    const char* Text() const noexcept { return _bytes != nullptr ? _bytes : ""; }
    char* Data() noexcept { return _bytes; }
    std::size_t Size() const noexcept { return _size; }
    std::size_t Capacity() const noexcept { return _capacity; }
    std::string_view View() const noexcept { return {Text(), _size}; }

    // False, with the line that every class prints and nothing changed, when memory runs out.
    bool Append(std::string_view bytes) noexcept;
    // Room for so many bytes in all; at least doubles, so that growing costs amortised constant time.
    bool Reserve(std::size_t capacity) noexcept;
    void Truncate(std::size_t size) noexcept {
        if (_bytes != nullptr) _bytes[_size = size] = '\0';
    }

private:
    char* _bytes = nullptr;
    std::size_t _size = 0;
    std::size_t _capacity = 0;
};

}  // namespace zel

#endif
