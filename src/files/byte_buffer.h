// A growing run of bytes with a NUL after it: for paths that grow and shrink at their end, names that wait, and blocks
// that are written piece by piece.
#ifndef FILES_BYTE_BUFFER_H
#define FILES_BYTE_BUFFER_H

#include <cstddef>
#include <string_view>

#include "base/growing_array.h"

namespace zel {

class ByteBuffer {
public:
    ByteBuffer() noexcept = default;
    ByteBuffer(const ByteBuffer&) = delete;
    ByteBuffer& operator=(const ByteBuffer&) = delete;

    const char* Text() const noexcept { return _bytes.Data() != nullptr ? _bytes.Data() : ""; }
    char* Data() noexcept { return _bytes.Data(); }
    std::size_t Size() const noexcept { return _bytes.Size(); }
    std::size_t Capacity() const noexcept { return _bytes.Capacity(); }
    std::string_view View() const noexcept { return {Text(), Size()}; }

    // False, with the line that every class prints and nothing changed, when memory runs out.
    bool Append(std::string_view bytes) noexcept;
    // Room for so many bytes in all; at least doubles, so that growing costs amortised constant time.
    bool Reserve(std::size_t capacity) noexcept;
    void Truncate(std::size_t size) noexcept {
        if (_bytes.Data() == nullptr) return;
        _bytes.SetSize(size);
        _bytes.Data()[size] = '\0';
    }

private:
    GrowingArray<char> _bytes;
};

}  // namespace zel

#endif
