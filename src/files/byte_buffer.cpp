// Growing by doubling, in one block of the C heap. The NUL behind the bytes always has room.

#include "files/byte_buffer.h"

#include <algorithm>
#include <cstring>

#include "base/failure_report.h"
#include "base/growing_array.h"

using namespace zel;

bool ByteBuffer::Append(std::string_view bytes) noexcept {
    if (bytes.size() >= _capacity - _size && !Reserve(_size + bytes.size() + 1)) return false;
    if (!bytes.empty()) std::memcpy(_bytes + _size, bytes.data(), bytes.size());
    _size += bytes.size();
    _bytes[_size] = '\0';
    return true;
}

bool ByteBuffer::Reserve(std::size_t capacity) noexcept {
    constexpr std::size_t FirstCapacity = 256;
    if (GrowArray(_bytes, _capacity, capacity, FirstCapacity)) return true;
    ReportAllocFailure("ByteBuffer", std::max({capacity, _capacity * 2, FirstCapacity}));
    return false;
}
